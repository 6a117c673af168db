#include "faults/sweep.h"

#include "common/scratchfile.h"
#include "platform/linux/filepreferences.h"
#include "registry/prefsfixture.h"

#include <KxQts/registry/loginitems.h>
#include <KxQts/winapi/registry.h>

#include <fstream>
#include <string>

using namespace KxTest;
namespace fs = std::filesystem;

namespace {

/// An open key of the machine's, asked for and closed through the registry calls.
class OpenedKey {
public:
    OpenedKey() = default;
    ~OpenedKey() {
        if (handle)
            RegCloseKey(handle);
    }
    OpenedKey(const OpenedKey&) = delete;
    OpenedKey& operator=(const OpenedKey&) = delete;

    bool open(const QString& path) {
        return regOpenKeyEx(QString(), HKEY_LOCAL_MACHINE, path, 0, 0, &handle) == ERROR_SUCCESS;
    }
    bool create(const QString& path) {
        return regCreateKeyEx(QString(), HKEY_LOCAL_MACHINE, path, 0, QString(), 0, 0, nullptr,
                              &handle, nullptr) == ERROR_SUCCESS;
    }
    [[nodiscard]] bool set(const QString& name, const QByteArray& data) const {
        return regSetValueEx(handle, name, 0, REG_BINARY, data) == ERROR_SUCCESS;
    }
    [[nodiscard]] void* get() const { return handle; }

private:
    void* handle = nullptr;
};

const QString keyName = QStringLiteral("K");
const QString changedName = QStringLiteral("changed");
const QString keptName = QStringLiteral("kept");
const QByteArray newValue = QByteArrayLiteral("new");

/// Everything works on one key that has one value to change, one to keep, and a key below.
class RegistryFaults : public RegistryTest {
protected:
    /// Puts a file there that the library has not read yet.
    static void prepare() {
        static const std::string file = [] {
            OpenedKey key;
            OpenedKey below;
            EXPECT_TRUE(key.create(keyName) && key.set(changedName, "old") &&
                        key.set(keptName, "kept") && below.create("K/below") &&
                        below.set("v", "x"));
            return contentsOf(machineFile());
        }();
        fs::create_directories(machineFile().parent_path());
        std::ofstream("fresh", std::ios::binary) << file;
        fs::rename("fresh", machineFile());
    }

    /// A value, read by someone who has not read the file before. Nothing where there is none.
    static QByteArray storedData(const QString& name) {
        Korvex::FilePreferences reader;
        QByteArray found;
        const Korvex::PreferenceDomain domain{"com.korvex.registry",
                                              Korvex::PreferenceDomain::Scope::AnyUser};
        EXPECT_TRUE(reader.read(domain, [&](const Korvex::PropertyList::Tree& tree) {
            const auto key = tree.member(tree.top(), keyName);
            const Object value(tree.copy(tree.member(key, name)));
            const auto* data = static_cast<CFDataRef>(value.get());
            if (data)
                found = QByteArray(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                                   CFDataGetLength(data));
        }));
        return found;
    }

    static void verifyNothingBeside() {
        for (const auto& entry : fs::directory_iterator(machineFile().parent_path()))
            EXPECT_FALSE(entry.path().filename().string().starts_with(".kxqts-"))
                << entry.path() << " is left";
    }

    /// Old or new, whole, and nothing else in the folder. What had to be reported as a failure may
    /// be stored all the same: the disk may have refused the last step only.
    static auto storeHas(const QByteArray& changed) {
        return [=](bool succeeded) {
            const QByteArray now = storedData(changedName);
            EXPECT_TRUE(now == changed || (!succeeded && now == "old")) << now.toStdString();
            EXPECT_EQ(storedData(keptName), "kept");
            verifyNothingBeside();
        };
    }

    /// A domain without a file has nothing to keep in memory.
    static void forget() {
        removeAll();
        const QString path = QStringLiteral("/Applications/None.app");
        bool found = false;
        const Korvex::WPrefs ofMachine(nullptr, nullptr, true);
        const Korvex::WPrefs ofUser(nullptr, nullptr, false);
        Korvex::checkAddRemoveLoginItem(path, path, found, Korvex::AutoLaunchedItemCheck, nullptr,
                                        0, nullptr, 0, true);
    }

    /// Registry calls leave errno alone, whatever happens.
    static void sweepStore(Scenario scenario) {
        if (!scenario.prepare)
            scenario.prepare = prepare;
        scenario.reports = {Reported::untouched};
        scenario.forget = forget;
        sweep(fileFaults() + memoryFaults(), scenario);
    }
};

} // namespace

TEST_F(RegistryFaults, OpeningAKey) {
    sweepStore({.name = "open key", .run = [] { return OpenedKey().open(keyName); }});
}

TEST_F(RegistryFaults, MakingTheFirstKeyOfAll) {
    sweepStore({.name = "first key",
                .prepare = [] { removeAll(); },
                .run =
                    [] {
                        OpenedKey key;
                        return key.create(keyName) && key.set(changedName, newValue);
                    },
                .verify =
                    [](bool succeeded) {
                        EXPECT_TRUE(!succeeded || storedData(changedName) == "new");
                        if (fs::exists(machineFile().parent_path()))
                            verifyNothingBeside();
                    }});
}

TEST_F(RegistryFaults, SettingAValue) {
    sweepStore({.name = "set value",
                .run =
                    [] {
                        OpenedKey key;
                        return key.create(keyName) && key.set(changedName, newValue);
                    },
                .verify = storeHas(newValue)});
}

TEST_F(RegistryFaults, QueryingAValue) {
    sweepStore({.name = "query value", .run = [] {
                    OpenedKey key;
                    QByteArray data;
                    unsigned type = 0;
                    const bool found =
                        key.open(keyName) && regQueryValueEx(key.get(), changedName, nullptr, &type,
                                                             data) == ERROR_SUCCESS;
                    return found && data == "old" && type == REG_BINARY;
                }});
}

TEST_F(RegistryFaults, DeletingAValue) {
    sweepStore({.name = "delete value",
                .run =
                    [] {
                        OpenedKey key;
                        return key.open(keyName) &&
                               regDeleteValue(key.get(), changedName) == ERROR_SUCCESS;
                    },
                .verify = storeHas({})});
}

TEST_F(RegistryFaults, DeletingAKey) {
    sweepStore({.name = "delete key",
                .run =
                    [] {
                        return regDeleteKey(QString(), HKEY_LOCAL_MACHINE, QStringLiteral("K")) ==
                               ERROR_SUCCESS;
                    },
                .verify =
                    [](bool succeeded) {
                        const QByteArray kept = storedData(keptName);
                        EXPECT_TRUE(kept.isEmpty() || (!succeeded && kept == "kept"));
                        verifyNothingBeside();
                    }});
}

TEST_F(RegistryFaults, EnumeratingAKey) {
    sweepStore({.name = "enumerate", .run = [] {
                    OpenedKey key;
                    QString name;
                    return key.open(keyName) &&
                           regEnumKey(QString(), key.get(), 2, name) == ERROR_SUCCESS &&
                           !name.isEmpty();
                }});
}

TEST_F(RegistryFaults, OpeningARoot) {
    sweepStore({.name = "root key", .run = [] {
                    void* root = nullptr;
                    return regOpenKeyEx(QString(), HKEY_CURRENT_USER, QString(), 0, 0, &root) ==
                               ERROR_SUCCESS &&
                           root;
                }});
}

TEST_F(RegistryFaults, ProfileValuesOfEachType) {
    sweepStore({.name = "profile values", .run = [] {
                    Korvex::WPrefs prefs(nullptr, nullptr, true);
                    const auto* user = kCFPreferencesAnyUser;
                    const QString path = QStringLiteral("P/q");
                    QString text = QStringLiteral("text");
                    int number = 5;
                    bool truth = true;
                    QByteArray data = QByteArrayLiteral("data");
                    return prefs.setProfileString(path, user, &text) &&
                           prefs.getProfileString(path, user, text) &&
                           prefs.setProfileInt(path, user, &number) &&
                           prefs.getProfileInt(path, user, number) &&
                           prefs.setProfileBool(path, user, &truth) &&
                           prefs.getProfileBool(path, user, truth) &&
                           prefs.setProfileBinary(path, user, &data) &&
                           prefs.getProfileBinary(path, user, data) && data == "data" &&
                           prefs.setProfileBinary(path, user, nullptr);
                }});
}

TEST_F(RegistryFaults, ThePathOfTheFile) {
    sweepStore({.name = "file path", .run = [] {
                    QString path;
                    return getPreferencesFilePath(true, path) && !path.isEmpty();
                }});
}

TEST_F(RegistryFaults, LoginItems) {
    sweepStore({.name = "login items", .run = [] {
                    bool found = false;
                    const QString path = QStringLiteral("/Applications/Tool.app");
                    const unsigned char bytes[] = {1, 2};
                    return Korvex::checkAddRemoveLoginItem(path, QStringLiteral("Tool"), found,
                                                           Korvex::AutoLaunchedItemAdd, bytes, 2,
                                                           bytes, 2, true) &&
                           Korvex::removeLoginItem(path);
                }});
}

TEST_F(RegistryFaults, PreferencesOfAnApplication) {
    const Object name = text("T");
    const Object id = text("com.korvex.registry");
    const Object value = text("value");
    const auto* domain = static_cast<CFStringRef>(id.get());
    const auto* key = static_cast<CFStringRef>(name.get());
    const auto* user = kCFPreferencesAnyUser;
    const auto* host = kCFPreferencesCurrentHost;
    sweepStore({.name = "preferences", .run = [=, &value] {
                    CFPreferencesSetValue(key, value.get(), domain, user, host);
                    if (CFPreferencesSynchronize(domain, user, host) == 0)
                        return false;
                    const Object stored(CFPreferencesCopyValue(key, domain, user, host));
                    const Object names(CFPreferencesCopyKeyList(domain, user, host));
                    return same(stored, value) && names &&
                           CFArrayGetCount(static_cast<CFArrayRef>(names.get())) == 2;
                }});
}
