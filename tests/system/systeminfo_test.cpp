#include "common/objects.h"
#include "fakes/groups.h"
#include "fakes/imagelist.h"
#include "fakes/preferences.h"
#include "fakes/systemfacts.h"

#include <KxQts/system/systeminfo.h>

#include <QHostInfo>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <fstream>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::ScriptedPreferences;
using KxTest::ScriptedSystemFacts;

namespace {

const QString hostDomain = QStringLiteral("SystemConfiguration/preferences");

/// States the host's name where the library looks for it.
void stateHostName(ScriptedPreferences& preferences, const KxTest::Object& name) {
    const KxTest::Object names = KxTest::dictionary({{"LocalHostName", &name}});
    const KxTest::Object network = KxTest::dictionary({{"HostNames", &names}});
    const KxTest::Object system = KxTest::dictionary({{"Network", &network}});
    ASSERT_TRUE(preferences.setValue({hostDomain, Korvex::PreferenceDomain::Scope::AnyUser},
                                     u"System", system.get()));
}

std::string ownPath() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return {path.data(), static_cast<std::size_t>(length)};
}

/// What a program of a path would be told of itself.
struct Program {
    explicit Program(const std::string& path) {
        images.list = {{path, nullptr}};
        isBundleKnown = getBundlePath(bundle);
        isExecutableKnown = getBundleExecutablePath(executable);
    }

    KxTest::FakeImageList images;
    QString bundle;
    QString executable;
    bool isBundleKnown;
    bool isExecutableKnown;
};

} // namespace

TEST(ComputerName, IsTheHosts) {
    QString name;
    EXPECT_TRUE(getComputerName(name));
    EXPECT_EQ(name, QHostInfo::localHostName());
    EXPECT_FALSE(name.isEmpty());
}

TEST(ComputerName, IsWrittenWholeWhateverTheSize) {
    const QString name = QHostInfo::localHostName();
    const auto end = static_cast<std::size_t>(name.size());
    std::array<char, 300> narrow{};
    narrow.fill('#');
    DWORD size = 1;
    EXPECT_EQ(GetComputerNameA(narrow.data(), &size), TRUE);
    EXPECT_EQ(size, 1u) << "never changed";
    EXPECT_EQ(QString::fromLatin1(narrow.data()), name);
    EXPECT_EQ(narrow[end + 1], '#');
    std::array<wchar_t, 300> wide{};
    wide.fill(L'#');
    EXPECT_EQ(GetComputerNameW(wide.data(), &size), TRUE);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(QString::fromWCharArray(wide.data()), name);
    EXPECT_EQ(wide[end + 1], L'#');
}

TEST(ComputerName, NeedsNeitherSizeNorBuffer) {
    std::array<char, 300> name{};
    EXPECT_EQ(GetComputerNameA(name.data(), nullptr), TRUE);
    EXPECT_NE(name[0], 0);
    EXPECT_EQ(GetComputerNameA(nullptr, nullptr), TRUE);
    EXPECT_EQ(GetComputerNameW(nullptr, nullptr), TRUE);
}

TEST(HostName, IsTheOneThatTheMachinesPreferencesState) {
    ScriptedPreferences preferences;
    ScriptedSystemFacts facts;
    facts.hostName = "other";
    stateHostName(preferences, KxTest::text("pear"));
    QString name = QStringLiteral("old");
    EXPECT_TRUE(getHostName(name));
    EXPECT_EQ(name, "pear");
}

TEST(HostName, ThatIsNoTextIsNone) {
    ScriptedPreferences preferences;
    ScriptedSystemFacts facts;
    facts.hostName = "other";
    stateHostName(preferences, KxTest::boolean(true));
    QString name = QStringLiteral("old");
    EXPECT_FALSE(getHostName(name));
    EXPECT_EQ(name, "") << "emptied";
}

TEST(HostName, IsTheSystemsWithoutPreferences) {
    const ScriptedPreferences preferences;
    ScriptedSystemFacts facts;
    QString name = QStringLiteral("old");
    EXPECT_FALSE(getHostName(name));
    EXPECT_EQ(name, "");
    facts.hostName = "plum";
    EXPECT_TRUE(getHostName(name));
    EXPECT_EQ(name, "plum");
}

TEST(HostName, OfDamagedPreferencesIsEmpty) {
    ScriptedPreferences preferences;
    ScriptedSystemFacts facts;
    facts.hostName = "plum";
    preferences.damaged.insert(hostDomain);
    QString name = QStringLiteral("old");
    EXPECT_FALSE(getHostName(name));
    EXPECT_EQ(name, "");
}

TEST(UserName, IsThatOfTheEffectiveUser) {
    const passwd* const account = getpwuid(geteuid());
    ASSERT_NE(account, nullptr);
    QString name;
    EXPECT_TRUE(getUserName(name));
    EXPECT_EQ(name, account->pw_name);
}

TEST(UserName, OfAUserWithoutAnAccountIsNone) {
    const KxTest::FakeGroups nobodyIsKnown;
    QString name = QStringLiteral("old");
    EXPECT_FALSE(getUserName(name));
    EXPECT_EQ(name, "old");
}

TEST(MachineIdentity, TellsModelAndSerialNumber) {
    ScriptedSystemFacts facts;
    QString text = QStringLiteral("old");
    EXPECT_FALSE(getModel(text));
    EXPECT_EQ(text, "old");
    EXPECT_FALSE(getSerialNumber(text)) << "no platform expert";
    EXPECT_EQ(text, "");
    facts.machineModel = "Book 5,1";
    facts.serial = "W80";
    EXPECT_TRUE(getModel(text));
    EXPECT_EQ(text, "Book 5,1");
    EXPECT_TRUE(getSerialNumber(text));
    EXPECT_EQ(text, "W80");
}

TEST(MachineIdentity, SerialNumberFits256BytesOfAscii) {
    ScriptedSystemFacts facts;
    QString text;
    facts.serial = std::string(255, '7');
    EXPECT_TRUE(getSerialNumber(text));
    EXPECT_EQ(text.size(), 255);
    facts.serial = std::string(256, '7');
    EXPECT_FALSE(getSerialNumber(text));
    EXPECT_EQ(text, "");
    facts.serial = "\xC3\xA9";
    EXPECT_FALSE(getSerialNumber(text));
}

TEST(MachineIdentity, TellsWhetherSwapIsEncrypted) {
    ScriptedSystemFacts facts;
    bool encrypted = false;
    facts.swapIsEncrypted = true;
    EXPECT_EQ(getSecureVirtualMemoryState(encrypted), 0);
    EXPECT_TRUE(encrypted);
    facts.swapIsEncrypted = false;
    facts.swapError = EACCES;
    EXPECT_EQ(getSecureVirtualMemoryState(encrypted), EACCES);
    EXPECT_TRUE(encrypted) << "left alone";
}

TEST(MachineIdentity, QuestionsLeaveErrnoAlone) {
    const ScriptedPreferences preferences;
    const ScriptedSystemFacts facts;
    for (const auto question : {getComputerName, getHostName, getUserName, getModel,
                                getSerialNumber, getBundlePath, getBundleExecutablePath}) {
        QString answer;
        errno = 77;
        question(answer);
        EXPECT_EQ(errno, 77) << answer.toStdString();
    }
}

TEST(MainBundle, IsTheFolderOfAPlainProgram) {
    QString path;
    EXPECT_TRUE(getBundleExecutablePath(path));
    EXPECT_EQ(path.toStdString(), ownPath());
    EXPECT_TRUE(getBundlePath(path));
    EXPECT_EQ(path.toStdString(), fs::path(ownPath()).parent_path());
    EXPECT_EQ(Program("/init").bundle, "/");
}

TEST(MainBundle, IsTheFolderAroundAProgramInABundle) {
    const std::string app = fs::absolute("Tool.app");
    fs::create_directories(app + "/Contents/MacOS");
    const Program tool(app + "/Contents/MacOS/Tool");
    EXPECT_EQ(tool.bundle.toStdString(), app);
    EXPECT_EQ(tool.executable.toStdString(), app + "/Contents/MacOS/Tool");
    EXPECT_EQ(Program(app + "/Contents/Tool").bundle.toStdString(), app + "/Contents");
    const std::string plugin = fs::absolute("Tool.bundle") / "Contents/MacOS";
    fs::create_directories(plugin);
    EXPECT_EQ(Program(plugin + "/Tool").bundle.toStdString(), plugin) << "no application";
    fs::remove_all("Tool.app");
    fs::remove_all("Tool.bundle");
}

TEST(MainBundle, OfAProgramThatTheSystemDoesNotName) {
    const Program unknown("");
    EXPECT_FALSE(unknown.isBundleKnown);
    EXPECT_FALSE(unknown.isExecutableKnown);
    EXPECT_EQ(unknown.bundle, "");
}

TEST(FileMode, HasTypeAndRights) {
    std::ofstream("file") << "x";
    ASSERT_EQ(chmod("file", 06640), 0);
    unsigned short mode = 77;
    EXPECT_EQ(getFileMode("file", mode), 0);
    EXPECT_EQ(mode, S_IFREG | 06640);
    EXPECT_EQ(getFileMode(".", mode), 0);
    EXPECT_TRUE(S_ISDIR(mode));
    mode = 77;
    EXPECT_EQ(getFileMode("none", mode), ENOENT);
    EXPECT_EQ(getFileMode("file/x", mode), ENOTDIR);
    EXPECT_EQ(getFileMode(nullptr, mode), EFAULT);
    EXPECT_EQ(mode, 77);
    fs::remove("file");
}

TEST(KeyboardLayout, IsNotSupported) {
    errno = 0;
    EXPECT_EQ(GetKeyboardLayout(), nullptr);
    EXPECT_EQ(errno, 50);
}
