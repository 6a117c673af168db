// The disk utility: what it shows, how it finds what is named, and mounting.

#include "common/unprivileged.h"
#include "tools/utilitydisk.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::makeFileSystem;
using KxTest::mebibyte;
using KxTest::mountOptions;
using KxTest::mountPointsOf;
using KxTest::ProgramResult;
using KxTest::runUtility;
using KxTest::sizeIn;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class DiskUtil : public KxTest::UtilityDisk {
protected:
    void SetUp() override {
        UtilityDisk::SetUp();
        if (IsSkipped())
            return;
        partition();
        makeVolume();
    }
};

int statusOf(const std::vector<std::string>& operands) {
    return runUtility(operands).status;
}

/// Something open on a volume.
class InUse {
public:
    explicit InUse(const std::string& folder) : descriptor(open(folder.c_str(), O_RDONLY)) {}
    ~InUse() { close(descriptor); }
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

private:
    const int descriptor;
};

} // namespace

TEST_F(DiskUtil, ListsDisksWithTheirSlices) {
    const ProgramResult shown = runUtility({"list"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.output, ContainsRegex("\n" + name(0) + " +" + disk.systemName() +
                                            " +134\\.2 MB +gpt\n  " + name() + " +" +
                                            disk.systemName() + "p1 +50\\.3 MB +ext4 +Data One\n"));
}

TEST_F(DiskUtil, ShowsWhatIsKnownOfAVolume) {
    const ProgramResult before = runUtility({"info", name()});
    EXPECT_EQ(before.status, 0);
    EXPECT_EQ(sizeIn(before.output, "Total Size:"), 48 * mebibyte);
    EXPECT_THAT(before.output, AllOf(HasSubstr("Mounted:             No\n"), HasSubstr("ext4"),
                                     HasSubstr("Data One"), Not(HasSubstr("Space:"))));
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    const ProgramResult shown = runUtility({"info", name()});
    EXPECT_THAT(shown.output, AllOf(HasSubstr("Mounted:             Yes\n"),
                                    HasSubstr("Mount Point:         " + volumes("Data One"))));
    const unsigned long long left = fs::space(volumes("Data One")).available;
    EXPECT_EQ(sizeIn(shown.output, "Free Space:"), left);
    EXPECT_EQ(statusOf({"info", name(0)}), 0) << "of whole disks too";
}

TEST_F(DiskUtil, NothingWrittenToAMediumLooksLikeTheFreeSpace) {
    makeVolume("Space:(5 Bytes)");
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    const ProgramResult shown = runUtility({"info", name()});
    EXPECT_THAT(shown.output, HasSubstr("Space:(5 Bytes)"));
    EXPECT_GT(sizeIn(shown.output, "Space:"), mebibyte);
    ASSERT_EQ(statusOf({"unmount", name()}), 0);
    makeVolume("a\nb");
    EXPECT_THAT(runUtility({"info", name()}).output, Not(HasSubstr("a\nb")));
}

TEST_F(DiskUtil, FindsAVolumeByEachOfItsNames) {
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    fs::create_symlink(slicePath(), "link");
    const std::string link = fs::current_path() / "link";
    for (const std::string& each :
         {volumes("Data One"), volumes("Data One") + '/', name(), "/dev/" + name(),
          disk.systemName() + "p1", slicePath(), link, std::string("Data One")})
        EXPECT_THAT(runUtility({"info", each}).output,
                    HasSubstr("Device Identifier:   " + name() + '\n'))
            << each;
    fs::remove("link");
    for (const char* each : {"Data", "data one", "", "disk99999", "/dev/disk99999", "/nothing",
                             "/dev/null", "/", "../../dev", "link"}) {
        const ProgramResult shown = runUtility({"info", each});
        if (std::string(each) != "/") { // may lie on a disk
            EXPECT_EQ(shown.status, 1) << each;
            EXPECT_THAT(shown.errors, StartsWith("diskutil: there is no disk or volume")) << each;
        }
    }
}

TEST_F(DiskUtil, TakesNamesAsTheyAre) {
    for (const char* label : {"-h", "--help", "limits", "a'b\"c", "$(id)", "; true", "a\nb", "*"}) {
        makeVolume(label);
        EXPECT_THAT(runUtility({"info", label}).output,
                    HasSubstr("Device Identifier:   " + name() + '\n'))
            << label;
    }
}

TEST_F(DiskUtil, TakesNamesInLatinOneToo) {
    makeVolume("Gr\xC3\xB6\xC3\x9F"
               "e");
    EXPECT_EQ(statusOf({"info", "Gr\xC3\xB6\xC3\x9F"
                                "e"}),
              0);
    EXPECT_EQ(statusOf({"info", "Gr\xF6\xDF"
                                "e"}),
              0)
        << "as a shell gets it from the library";
    ASSERT_EQ(statusOf({"mount", "Gr\xF6\xDF"
                                 "e"}),
              0);
    // The library takes each byte of a path for a character, and hands that over in UTF-8.
    EXPECT_EQ(statusOf({"info", volumes("Gr\xC3\x83\xC2\xB6\xC3\x83\xC2\x9F"
                                        "e")}),
              0);
}

TEST_F(DiskUtil, ANameOfSeveralVolumesIsRefused) {
    ASSERT_TRUE(makeFileSystem(disk.partitionPath(2), "Data One"));
    const ProgramResult shown = runUtility({"mount", "Data One"});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors,
                AllOf(HasSubstr("several volumes"), HasSubstr(name(1)), HasSubstr(name(2))));
    EXPECT_EQ(mountPointsOf(node()), "");
}

TEST_F(DiskUtil, MountsInANewFolderAndRemovesIt) {
    ASSERT_EQ(statusOf({"mount", "Data One"}), 0);
    EXPECT_EQ(mountPointsOf(node()), volumes("Data One") + ' ');
    // The table of mounts writes blanks as their numbers.
    EXPECT_THAT(mountOptions(volumes("Data\\040One")),
                AllOf(HasSubstr("nosuid"), HasSubstr("nodev")));
    struct stat status {};
    ASSERT_EQ(stat(volumes().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755u);
    ASSERT_EQ(statusOf({"unmount", volumes("Data One")}), 0);
    EXPECT_EQ(mountPointsOf(node()), "");
    EXPECT_FALSE(fs::exists(volumes("Data One")));
}

TEST_F(DiskUtil, MountsBesideAFolderOfTheSameName) {
    fs::create_directories(volumes("Data One"));
    std::ofstream(volumes("Data One") + "/mine") << "x";
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    EXPECT_EQ(mountPointsOf(node()), volumes("Data One 1") + ' ');
    ASSERT_EQ(statusOf({"unmount", name()}), 0);
    EXPECT_FALSE(fs::exists(volumes("Data One 1")));
    EXPECT_TRUE(fs::exists(volumes("Data One") + "/mine"));
}

TEST_F(DiskUtil, ALabelDoesNotLeadOutOfTheFolder) {
    makeVolume("../../x");
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    EXPECT_EQ(mountPointsOf(node()), volumes("..:..:x") + ' ');
}

TEST_F(DiskUtil, WhatIsAsItShouldBeIsASuccess) {
    EXPECT_EQ(statusOf({"unmount", name()}), 0);
    EXPECT_EQ(statusOf({"mount", name()}), 0);
    EXPECT_EQ(statusOf({"mount", name()}), 0);
    EXPECT_EQ(mountPointsOf(node()), volumes("Data One") + ' ') << "once";
}

TEST_F(DiskUtil, UnmountsEveryPlaceOfAVolumeAndKeepsFoldersOfOthers) {
    const std::string place = fs::current_path() / "place";
    const KxTest::Mounted mounted(slicePath(), place);
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    EXPECT_EQ(mountPointsOf(node()), place + ' ') << "mounted already";
    ASSERT_EQ(statusOf({"unmount", name()}), 0);
    EXPECT_EQ(mountPointsOf(node()), "");
    EXPECT_TRUE(fs::exists(place));
}

TEST_F(DiskUtil, AVolumeInUseStaysMounted) {
    ASSERT_EQ(statusOf({"mount", name()}), 0);
    const InUse use(volumes("Data One"));
    const ProgramResult shown = runUtility({"unmount", name()});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, AllOf(StartsWith("diskutil: "), HasSubstr("busy")));
    EXPECT_EQ(mountPointsOf(node()), volumes("Data One") + ' ');
}

TEST_F(DiskUtil, WhatHoldsNoFileSystemIsNotMounted) {
    const ProgramResult shown = runUtility({"mount", name(2)});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, HasSubstr("holds no file system"));
    EXPECT_FALSE(fs::exists(volumes(name(2))));
}

TEST_F(DiskUtil, AFileSystemThatCannotBeMountedLeavesNoFolder) {
    // The superblock is there, but little else.
    wipe(2048, mebibyte);
    const ProgramResult shown = runUtility({"mount", name()});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, HasSubstr("cannot mount"));
    EXPECT_TRUE(fs::is_empty(volumes()));
}

TEST_F(DiskUtil, MountsAndUnmountsAllVolumesOfADisk) {
    ASSERT_TRUE(makeFileSystem(disk.partitionPath(2), "Two"));
    EXPECT_EQ(statusOf({"mountDisk", name(0)}), 0);
    EXPECT_EQ(mountPointsOf(node(1)), volumes("Data One") + ' ');
    EXPECT_EQ(mountPointsOf(node(2)), volumes("Two") + ' ');
    EXPECT_EQ(statusOf({"mountDisk", name(0)}), 0);
    {
        const InUse use(volumes("Data One"));
        EXPECT_EQ(statusOf({"unmountDisk", name(2)}), 1) << "a slice stands for its disk";
    }
    EXPECT_EQ(mountPointsOf(node(1)), volumes("Data One") + ' ');
    EXPECT_EQ(mountPointsOf(node(2)), "") << "the others have their turn";
    EXPECT_EQ(statusOf({"unmountDisk", name(0)}), 0);
    EXPECT_EQ(statusOf({"unmountDisk", name(0)}), 0) << "nothing is left to do";
    EXPECT_EQ(mountPointsOf(node(1)), "");
}

TEST_F(DiskUtil, ADiskWithoutAVolumeIsNotMounted) {
    wipe(0, mebibyte);
    EXPECT_EQ(statusOf({"mountDisk", name(0)}), 1);
}

TEST_F(DiskUtil, OnlyRootMountsButEveryoneMayLook) {
    const std::string program = fs::read_symlink("/usr/sbin/diskutil");
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        EXPECT_EQ(statusOf({"list"}), 0);
        const ProgramResult shown = runUtility({"mount", name()});
        EXPECT_EQ(shown.status, 1);
        EXPECT_THAT(shown.errors, HasSubstr("only root"));
        EXPECT_EQ(statusOf({"resizeVolume", name(), "40M"}), 1);
    })) << program;
    EXPECT_EQ(mountPointsOf(node()), "");
}

TEST_F(DiskUtil, AWrongCommandLineIsTold) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"nonsense"},
        {"list", "x"},
        {"info"},
        {"mount", "Data", "One"},
        {"resizeVolume", "Data One"},
        {"resizeVolume", "Data One", ""},
        {"resizeVolume", "Data One", "B"},
        {"resizeVolume", "Data One", "12"},
        {"resizeVolume", "Data One", "-1B"},
        {"resizeVolume", "Data One", "1BB"},
        {"resizeVolume", "Data One", "1MBx"},
        {"resizeVolume", "Data One", "0x10B"},
        {"resizeVolume", "Data One", "99999999999T"},
        {"resizeVolume", "Data One", "9223372036854775808B"},
        {"resizeVolume", "Data One", "9223372036854775.9k"},
    };
    for (const auto& words : wrong) {
        const ProgramResult shown = runUtility(words);
        EXPECT_EQ(shown.status, 2) << testing::PrintToString(words);
        EXPECT_THAT(shown.errors, HasSubstr("see diskutil --help"));
        EXPECT_EQ(shown.output, "");
    }
    EXPECT_THAT(runUtility({"--help"}).output, HasSubstr("diskutil resizeVolume NAME SIZE|limits"));
    EXPECT_EQ(runUtility({"--version"}).output, "diskutil (KxQts) 1.0.0\n");
}

TEST_F(DiskUtil, SaysWhenNobodyTakesItsOutput) {
    EXPECT_EQ(KxTest::runProgram({"/bin/sh", "-c", "/usr/sbin/diskutil list >/dev/full"}).status,
              1);
}
