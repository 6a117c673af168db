#include "platform/linux/filepreferences.h"

#include "common/objects.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace KxTest;
using Korvex::FilePreferences;
using Korvex::PreferenceDomain;
using Korvex::PropertyList::Limits;
using Scope = PreferenceDomain::Scope;
namespace fs = std::filesystem;

namespace {

int dataSyncs = 0;
int fullSyncs = 0;

} // namespace

// The storage's calls end here, so that they can be counted: nothing tells from outside whether a
// file has reached the disk.
extern "C" int fdatasync(int) {
    ++dataSyncs;
    return 0;
}
extern "C" int fsync(int) {
    ++fullSyncs;
    return 0;
}

namespace {

class PreferenceFiles : public testing::Test {
protected:
    PreferenceFiles() {
        fs::remove_all(root / "Library");
        fs::remove_all(home / "Library");
    }
    ~PreferenceFiles() override {
        fs::remove_all(root / "Library");
        fs::remove_all(home / "Library");
    }

    static std::string contents(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    static void write(const fs::path& file, const std::string& text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }

    static std::string xml(const std::string& value) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>a"
               "</key><string>" +
               value + "</string></dict></plist>\n";
    }

    bool set(const PreferenceDomain& domain, const Object& value) {
        return storage.setValue(domain, u"a", value.get());
    }
    Object value(const PreferenceDomain& domain) { return Object(storage.copyValue(domain, u"a")); }

    static unsigned mode(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    const fs::path root = std::getenv("KXQTS_ROOT");
    const fs::path home = std::getenv("HOME");
    const fs::path machineFile = root / "Library/Preferences/com.example.test.plist";
    const fs::path userFile = home / "Library/Preferences/com.example.test.plist";
    const PreferenceDomain machine{"com.example.test", Scope::AnyUser};
    const PreferenceDomain user{"com.example.test", Scope::CurrentUser};
    FilePreferences storage;
};

} // namespace

TEST_F(PreferenceFiles, EachScopeHasItsFolder) {
    ASSERT_TRUE(set(machine, number(1)));
    ASSERT_TRUE(set(user, number(2)));
    EXPECT_TRUE(fs::exists(machineFile));
    EXPECT_TRUE(fs::exists(userFile));
}

TEST_F(PreferenceFiles, AnAbsoluteDomainIsThatPath) {
    for (const Scope scope : {Scope::AnyUser, Scope::CurrentUser}) {
        const PreferenceDomain absolute{"/Library/Special/thing", scope};
        ASSERT_TRUE(storage.setValue(absolute, u"a", number(1).get()));
        EXPECT_TRUE(fs::exists(root / "Library/Special/thing.plist"));
    }
}

TEST_F(PreferenceFiles, SlashesInAPlainDomainAreFolders) {
    ASSERT_TRUE(storage.setValue({"Folder/name", Scope::AnyUser}, u"a", number(1).get()));
    EXPECT_TRUE(fs::exists(root / "Library/Preferences/Folder/name.plist"));
}

TEST_F(PreferenceFiles, FoldersAreMadeByTheFirstWriteNotByAQuery) {
    EXPECT_TRUE(storage.synchronize(machine));
    EXPECT_FALSE(value(user));
    EXPECT_FALSE(storage.folder(Scope::AnyUser));
    EXPECT_FALSE(fs::exists(root / "Library"));
    EXPECT_FALSE(fs::exists(home / "Library"));
    ASSERT_TRUE(set(machine, number(1)));
    EXPECT_EQ(storage.folder(Scope::AnyUser),
              QString::fromStdString((root / "Library/Preferences").string()));
}

TEST_F(PreferenceFiles, ModesDoNotDependOnTheMask) {
    const mode_t before = umask(0077);
    EXPECT_TRUE(set(machine, number(1)));
    umask(0);
    EXPECT_TRUE(set(user, number(1)));
    umask(before);
    EXPECT_EQ(mode(machineFile), 0644U);
    EXPECT_EQ(mode(machineFile.parent_path()), 0755U);
    EXPECT_EQ(mode(userFile), 0600U);
    EXPECT_EQ(mode(userFile.parent_path()), 0700U);
    EXPECT_EQ(mode(machineFile.parent_path() / ".com.example.test.lock"), 0600U)
        << "nobody else can hold up the owner's writes";
}

TEST_F(PreferenceFiles, AFileThatIsMorePrivateThanItShouldBeIsOpenedUpByAWrite) {
    ASSERT_TRUE(set(machine, number(1)));
    fs::permissions(machineFile, fs::perms::owner_all);
    ASSERT_TRUE(set(machine, number(2)));
    EXPECT_EQ(mode(machineFile), 0644U);
}

TEST_F(PreferenceFiles, RootLeavesAnotherUsersFilesTheirs) {
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root";
    fs::create_directories(home / "Library/Preferences");
    ASSERT_EQ(chown((home / "Library/Preferences").c_str(), 4711, 4712), 0);
    ASSERT_TRUE(set(user, number(1)));
    struct stat status {};
    for (const char* name : {"com.example.test.plist", ".com.example.test.lock"}) {
        ASSERT_EQ(stat((home / "Library/Preferences" / name).c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, 4711U) << name;
        EXPECT_EQ(status.st_gid, 4712U) << name;
    }
    ASSERT_EQ(chown(userFile.c_str(), 1234, 1235), 0);
    ASSERT_TRUE(set(user, number(2)));
    ASSERT_EQ(stat(userFile.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234U) << "the file's owner goes before the folder's";
}

TEST_F(PreferenceFiles, BinaryIsWrittenWhateverWasRead) {
    write(machineFile, xml("text"));
    EXPECT_TRUE(same(value(machine), text("text")));
    EXPECT_EQ(contents(machineFile), xml("text")) << "reading changes nothing";
    ASSERT_TRUE(storage.setValue(machine, u"b", number(1).get()));
    EXPECT_EQ(contents(machineFile).substr(0, 8), "bplist00");
    EXPECT_TRUE(same(value(machine), text("text")));
}

TEST_F(PreferenceFiles, WritesOfOthersAreSeenByTheNextReadHoweverSoon) {
    for (int i = 0; i < 50; ++i) {
        // Of one size, in place, within one tick of the clock that stamps files.
        write(machineFile, xml(i % 2 == 0 ? "even" : "odd!"));
        EXPECT_TRUE(same(value(machine), text(i % 2 == 0 ? "even" : "odd!"))) << i;
    }
    FilePreferences other;
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(other.setValue(machine, u"a", number(i).get()));
        EXPECT_TRUE(same(value(machine), number(i)));
        ASSERT_TRUE(other.setValue(machine, u"a", number(i + 1).get()));
        ASSERT_TRUE(other.setValue(machine, u"a", number(i + 2).get()));
        EXPECT_TRUE(same(value(machine), number(i + 2)));
    }
    fs::remove(machineFile);
    EXPECT_FALSE(value(machine));
    EXPECT_TRUE(storage.synchronize(machine));
}

TEST_F(PreferenceFiles, ReadingNeedsNoRightToWrite) {
    ASSERT_TRUE(set(machine, number(1)));
    fs::remove(machineFile.parent_path() / ".com.example.test.lock");
    FilePreferences fresh;
    EXPECT_TRUE(same(Object(fresh.copyValue(machine, u"a")), number(1)));
    EXPECT_FALSE(fs::exists(machineFile.parent_path() / ".com.example.test.lock"));
}

TEST_F(PreferenceFiles, ADamagedFileFailsAndIsLeftAlone) {
    const std::string whole = [&] {
        EXPECT_TRUE(set(machine, text("value")));
        return contents(machineFile);
    }();
    for (const std::string& damaged :
         {std::string(), std::string("garbage"), whole.substr(0, whole.size() - 1),
          whole.substr(0, 40), std::string("<plist><array/></plist>"), xml("x").substr(0, 60)}) {
        write(machineFile, damaged);
        EXPECT_FALSE(storage.synchronize(machine)) << damaged;
        EXPECT_FALSE(value(machine));
        EXPECT_FALSE(set(machine, number(2)));
        EXPECT_FALSE(storage.removeValue(machine, u"a"));
        EXPECT_EQ(contents(machineFile), damaged) << "not moved, rewritten or overwritten";
    }
    write(machineFile, whole);
    EXPECT_TRUE(storage.synchronize(machine)) << "it is well again";
}

TEST_F(PreferenceFiles, WhatIsNoFileFails) {
    fs::create_directories(machineFile);
    EXPECT_FALSE(storage.synchronize(machine));
    EXPECT_FALSE(set(machine, number(1)));
    fs::remove(machineFile);
    ASSERT_EQ(mkfifo(machineFile.c_str(), 0600), 0);
    EXPECT_FALSE(storage.synchronize(machine)) << "and nothing waits for a writer";
    fs::remove_all(root / "Library");
    write(root / "Library", "a file in the way");
    EXPECT_FALSE(storage.synchronize(machine));
    EXPECT_FALSE(set(machine, number(1)));
    fs::remove(root / "Library");
}

TEST_F(PreferenceFiles, NamesThatNoFileCanHaveFail) {
    for (const QString& id : {QString(), QString("a") + QChar(0) + "b", QString(250, 'x')}) {
        const PreferenceDomain impossible{id, Scope::AnyUser};
        EXPECT_FALSE(storage.setValue(impossible, u"a", number(1).get()));
    }
    const PreferenceDomain longest{QString(249, 'x'), Scope::AnyUser};
    EXPECT_TRUE(storage.setValue(longest, u"a", number(1).get()));
    EXPECT_TRUE(same(Object(storage.copyValue(longest, u"a")), number(1)));
}

TEST_F(PreferenceFiles, WhatCouldNotBeReadLaterIsRefusedAtOnce) {
    Limits limits;
    limits.bytes = 1000;
    FilePreferences small(FilePreferences::PowerLoss::Unsafe, limits);
    ASSERT_TRUE(small.setValue(machine, u"a", number(1).get()));
    EXPECT_FALSE(small.setValue(machine, u"b", data(QByteArray(1000, 'x')).get()));
    EXPECT_TRUE(same(Object(small.copyValue(machine, u"a")), number(1)));
    EXPECT_FALSE(Object(small.copyValue(machine, u"b")));
}

TEST_F(PreferenceFiles, TheDiskIsWaitedForWhereTheSwitchSaysSo) {
    const auto syncsOf = [&](FilePreferences::PowerLoss powerLoss, const PreferenceDomain& domain) {
        FilePreferences preferences(powerLoss);
        dataSyncs = fullSyncs = 0;
        EXPECT_TRUE(preferences.setValue(domain, u"a", number(1).get()));
        EXPECT_TRUE(preferences.setValue(domain, u"a", number(2).get()));
        return std::pair(dataSyncs, fullSyncs);
    };
    using PowerLoss = FilePreferences::PowerLoss;
    EXPECT_EQ(syncsOf(PowerLoss::Safe, user), std::pair(2, 2)) << "the file, and its folder";
    EXPECT_EQ(syncsOf(PowerLoss::Unsafe, machine), std::pair(0, 0));
    EXPECT_EQ(syncsOf(PowerLoss::SafeForMachine, user), std::pair(0, 0));
    const int expected = geteuid() == 0 ? 2 : 0;
    EXPECT_EQ(syncsOf(PowerLoss::SafeForMachine, machine), std::pair(expected, expected));
}

TEST_F(PreferenceFiles, WhatKilledWritersLeftIsRemovedAndNothingElse) {
    ASSERT_TRUE(set(machine, number(1)));
    const fs::path folder = machineFile.parent_path();
    const Korvex::DomainFile file(machineFile.string().c_str(), Scope::AnyUser);
    const fs::path own = folder / (file.temporaryName + "0123456789abcdef").toStdString();
    write(own, "half a file");
    write(folder / ".kxqts-00000000-0123456789abcdef", "another domain's");
    FilePreferences fresh;
    EXPECT_TRUE(same(Object(fresh.copyValue(machine, u"a")), number(1)));
    EXPECT_TRUE(fs::exists(own)) << "readers remove nothing";
    ASSERT_TRUE(fresh.setValue(machine, u"a", number(2).get()));
    EXPECT_FALSE(fs::exists(own));
    EXPECT_TRUE(fs::exists(folder / ".kxqts-00000000-0123456789abcdef"));
}

TEST_F(PreferenceFiles, NothingButTheFileAndItsLockIsLeft) {
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(set(machine, number(i)));
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(machineFile.parent_path()))
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"com.example.test.plist", ".com.example.test.lock"}));
}

TEST_F(PreferenceFiles, ErrnoIsLeftAlone) {
    errno = 77;
    EXPECT_FALSE(value(machine));
    EXPECT_TRUE(set(machine, number(1)));
    EXPECT_TRUE(storage.synchronize(user));
    EXPECT_FALSE(storage.setValue({"", Scope::AnyUser}, u"a", number(1).get()));
    EXPECT_FALSE(storage.folder(Scope::CurrentUser));
    EXPECT_EQ(errno, 77);
}

TEST_F(PreferenceFiles, AnUnchangedDomainIsNotWritten) {
    ASSERT_TRUE(set(machine, number(1)));
    const auto before = fs::last_write_time(machineFile);
    ASSERT_TRUE(storage.removeValue(machine, u"nothing"));
    EXPECT_FALSE(storage.change(machine, [](auto&) { return false; }));
    EXPECT_EQ(fs::last_write_time(machineFile), before);
}
