// Keys: where they lie, how long they live, and what they may become.

#include "registry/prefsfixture.h"

#include "platform/lock.h"

#include <KxQts/winapi/handles.h>

#include <cerrno>
#include <fstream>

using namespace KxTest;
using Korvex::WPrefs;

namespace {

using Prefs = RegistryTest;

const __CFString* const machine = kCFPreferencesAnyUser;

} // namespace

TEST_F(Prefs, ANewKeyStoresNothing) {
    {
        const Key key("A/B");
        ASSERT_TRUE(key.prefs);
        EXPECT_EQ(key.disposition, 1U);
    }
    EXPECT_FALSE(std::filesystem::exists(machineFile()));
    EXPECT_EQ(WPrefs::initKey(QString(), "A/B", true, nullptr), nullptr) << "it is not there";
    ASSERT_TRUE(Key("A/B")->setValue("v", REG_DWORD, dword(1)));
    EXPECT_EQ(Key("A/B").disposition, 2U);
    WPrefs* opened = WPrefs::initKey(QString(), "A/B", true, nullptr);
    EXPECT_NE(opened, nullptr);
    EXPECT_TRUE(WPrefs::disposeKey(opened));
}

TEST_F(Prefs, AKeyBelowAnotherTakesItsDomainAndScope) {
    const QString id = "com.example.app";
    const Key parent("A", id);
    unsigned disposition = 0;
    WPrefs* child = WPrefs::initKey(parent.prefs, "B", false, false, &disposition);
    ASSERT_TRUE(child);
    EXPECT_EQ(disposition, 1U);
    ASSERT_TRUE(child->setValue("v", REG_DWORD, dword(1)));
    EXPECT_TRUE(std::filesystem::exists(machineFile(id)));
    QString name;
    EXPECT_TRUE(parent->enumKey(0, name, nullptr));
    EXPECT_EQ(name, "B");
    EXPECT_TRUE(WPrefs::disposeKey(child));
}

TEST_F(Prefs, BelowTheRootTheSlashIsPartOfTheName) {
    const std::unique_ptr<WPrefs> root(WPrefs::initKey(QString(), QString(), true, nullptr));
    WPrefs* child = WPrefs::initKey(root.get(), "B", true, false, nullptr);
    ASSERT_TRUE(child);
    ASSERT_TRUE(child->setValue("v", REG_DWORD, dword(1)));
    EXPECT_TRUE(same(stored("/B/v"), number(1)));
    EXPECT_TRUE(WPrefs::disposeKey(child));
}

TEST_F(Prefs, WithoutAParentTheScopeGivenIsTaken) {
    WPrefs* key = WPrefs::initKey(nullptr, "A", false, false, nullptr);
    ASSERT_TRUE(key->setValue("v", REG_DWORD, dword(1)));
    EXPECT_TRUE(WPrefs::disposeKey(key));
    EXPECT_TRUE(std::filesystem::exists(userFile()));
    key = WPrefs::initKey(nullptr, "A", true, false, nullptr);
    EXPECT_FALSE(key->queryValue("v", nullptr, *std::make_unique<QByteArray>()));
    EXPECT_TRUE(WPrefs::disposeKey(key));
}

TEST_F(Prefs, RootsAreOnNoListAndHaveNoDisposition) {
    unsigned disposition = 99;
    const std::unique_ptr<WPrefs> root(WPrefs::initKey(QString(), QString(), true, &disposition));
    ASSERT_TRUE(root);
    EXPECT_EQ(disposition, 99U);
    EXPECT_EQ(WPrefs::getExistingKey(root.get()), nullptr);
    EXPECT_FALSE(WPrefs::disposeKey(root.get()));
}

TEST_F(Prefs, OpenKeysAreOnTheListUntilTheyAreDisposedOf) {
    std::size_t before = 0;
    {
        const Korvex::LockGuard guard(WPrefs::sCritSect);
        before = WPrefs::sPrefsList.size();
    }
    WPrefs* key = WPrefs::initKey(QString(), "A", false, nullptr);
    {
        const Korvex::LockGuard guard(WPrefs::sCritSect);
        EXPECT_EQ(WPrefs::sPrefsList.size(), before + 1);
        EXPECT_EQ(WPrefs::sPrefsList.at(before), key);
    }
    EXPECT_EQ(WPrefs::getExistingKey(key), key);
    EXPECT_TRUE(WPrefs::disposeKey(key));
    EXPECT_FALSE(WPrefs::disposeKey(key));
    EXPECT_EQ(WPrefs::getExistingKey(key), nullptr);
    EXPECT_EQ(WPrefs::getExistingKey(nullptr), nullptr);
    EXPECT_EQ(WPrefs::getExistingKey(INVALID_HANDLE_VALUE), nullptr);
    int other = 0;
    EXPECT_EQ(WPrefs::getExistingKey(&other), nullptr);
}

TEST_F(Prefs, AKeyIsNoTaggedHandle) {
    const Key key("A");
    errno = 0;
    EXPECT_FALSE(CloseHandle(key.prefs));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(WaitForSingleObject(key.prefs, 0), WAIT_FAILED);
    EXPECT_EQ(WPrefs::getExistingKey(key.prefs), key.prefs) << "and nothing happened to it";
}

TEST_F(Prefs, ADomainThatCannotBeReadMakesNoKey) {
    std::filesystem::create_directories(machineFile().parent_path());
    std::ofstream(machineFile()) << "damaged";
    EXPECT_EQ(WPrefs::initKey(QString(), "A", false, nullptr), nullptr);
    EXPECT_EQ(WPrefs::initKey(QString(), QString(), true, nullptr), nullptr);
    WPrefs key(nullptr, nullptr, true);
    std::filesystem::remove(machineFile());
    QString name;
    QByteArray data;
    EXPECT_FALSE(key.putObject("a", number(1).get(), machine)) << "it fails from then on";
    EXPECT_FALSE(get(key, "a"));
    EXPECT_FALSE(key.setValue("v", REG_DWORD, dword(1)));
    EXPECT_FALSE(key.queryValue("v", nullptr, data));
    EXPECT_FALSE(key.enumKey(0, name, nullptr));
    EXPECT_FALSE(key.deleteKey("A"));
    EXPECT_FALSE(key.deleteValue("v"));
    EXPECT_TRUE(key.setSyncProperty("a", number(1).get(), machine)) << "but not these two";
    EXPECT_TRUE(Object(key.getSyncProperty("a", machine)));
    EXPECT_TRUE(key.initialize("com.korvex.registry", nullptr, true)) << "it can be made anew";
    EXPECT_TRUE(get(key, "a"));
}

TEST_F(Prefs, AKeyCanBecomeAnotherOne) {
    WPrefs key(nullptr, nullptr, true);
    const QString path = "K";
    EXPECT_TRUE(key.initialize("com.example.app", &path, false));
    ASSERT_TRUE(key.setValue("v", REG_DWORD, dword(1)));
    EXPECT_TRUE(std::filesystem::exists(userFile().parent_path() / "com.example.app.plist"));
}
