// The disk utility: the sizes that volumes can have, and changing them.

#include "common/child.h"
#include "tools/utilitydisk.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/fs.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::mebibyte;
using KxTest::Mounted;
using KxTest::mountOptions;
using KxTest::mountPointsOf;
using KxTest::ProgramResult;
using KxTest::runProgram;
using KxTest::runUtility;
using KxTest::sizeIn;
using testing::AllOf;
using testing::HasSubstr;

namespace {

std::string bytes(unsigned long long size) {
    return std::to_string(size) + 'B';
}

class DiskUtilResize : public KxTest::UtilityDisk {
protected:
    void prepare(const std::string& tableType = "gpt") {
        partition(tableType);
        makeVolume();
    }

    [[nodiscard]] std::string limits() const {
        const ProgramResult shown = runUtility({"resizeVolume", name(), "limits"});
        EXPECT_EQ(shown.status, 0) << shown.errors;
        return shown.output;
    }
    [[nodiscard]] unsigned long long size() const { return sizeIn(limits(), "Current size:"); }
    [[nodiscard]] unsigned long long minimum() const { return sizeIn(limits(), "Minimum size:"); }
    [[nodiscard]] unsigned long long maximum() const { return sizeIn(limits(), "Maximum size:"); }

    [[nodiscard]] ProgramResult resize(unsigned long long to) const {
        return runUtility({"resizeVolume", name(), bytes(to)});
    }

    /// Resizes, and expects file system and slice to have that size.
    void expectResize(unsigned long long to) const {
        const ProgramResult shown = resize(to);
        EXPECT_EQ(shown.status, 0) << shown.errors;
        EXPECT_EQ(size(), to);
        EXPECT_EQ(sizeInKernel(), to);
        EXPECT_EQ(sizeInTable(), to);
    }

    /// Expects a refusal with a text that leaves everything as it was.
    void expectRefusal(const std::string& operand, const std::string& text) const {
        const std::string before = limits() + mountPointsOf(node());
        const unsigned long long inTable = sizeInTable();
        const ProgramResult shown = runUtility({"resizeVolume", name(), operand});
        EXPECT_EQ(shown.status, 1);
        EXPECT_THAT(shown.errors, HasSubstr(text));
        EXPECT_EQ(shown.output, "");
        EXPECT_EQ(limits() + mountPointsOf(node()), before);
        EXPECT_EQ(sizeInTable(), inTable);
        EXPECT_EQ(sizeInKernel(), 48 * mebibyte);
    }
};

class DiskUtilResizeTable : public DiskUtilResize,
                            public testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(DiskUtilResizeTable, ShrinksAndGrowsAVolumeWithItsSlice) {
    prepare(GetParam());
    {
        const Mounted mounted(slicePath(), fs::current_path() / "place");
        writeData(mounted.folder());
    }
    EXPECT_EQ(size(), 48 * mebibyte);
    EXPECT_EQ(maximum(), 79 * mebibyte) << "up to the next slice";
    expectResize(40 * mebibyte);
    expectResize(79 * mebibyte);
    expectResize(60 * mebibyte);
    EXPECT_TRUE(isClean());
    EXPECT_TRUE(isOtherSliceIntact());
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    EXPECT_TRUE(hasData(mounted.folder()));
}

INSTANTIATE_TEST_SUITE_P(, DiskUtilResizeTable, testing::Values("gpt", "dos"),
                         [](const auto& each) { return std::string(each.param); });

TEST_F(DiskUtilResize, AMountedVolumeIsPutBackAsItWas) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place", "ext4",
                          MS_NOATIME | MS_NOEXEC | MS_NODEV);
    const Mounted again(slicePath(), fs::current_path() / "again", "ext4",
                        MS_NOATIME | MS_NOEXEC | MS_NODEV);
    writeData(mounted.folder());
    const std::string places = mountPointsOf(node());
    const std::string options = mountOptions(mounted.folder());
    ASSERT_THAT(options, AllOf(HasSubstr("noatime"), HasSubstr("noexec"), HasSubstr("nodev")));
    for (const unsigned long long to : {40 * mebibyte, 70 * mebibyte}) {
        expectResize(to);
        EXPECT_EQ(mountPointsOf(node()), places);
        EXPECT_EQ(mountOptions(mounted.folder()), options);
        EXPECT_TRUE(hasData(again.folder()));
    }
    EXPECT_TRUE(isOtherSliceIntact());
}

TEST_F(DiskUtilResize, TheLimitsHaveTheFormThatProgramsRead) {
    prepare();
    const std::string shown = limits();
    EXPECT_THAT(shown, testing::MatchesRegex("Current size:  50\\.3 MB \\(50331648 Bytes\\)\n"
                                             "Minimum size:  [0-9.]+ MB \\([0-9]+ Bytes\\)\n"
                                             "Maximum size:  82\\.8 MB \\(82837504 Bytes\\)\n"));
}

TEST_F(DiskUtilResize, TheMinimumCountsWhatWasJustWritten) {
    prepare();
    const unsigned long long before = minimum();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    writeData(mounted.folder(), 24 * mebibyte);
    EXPECT_GT(minimum(), before + 16 * mebibyte);
}

TEST_F(DiskUtilResize, AVolumeCanHaveItsMinimumSize) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    writeData(mounted.folder());
    const unsigned long long least = minimum();
    const ProgramResult shown = resize(least);
    EXPECT_EQ(shown.status, 0) << shown.errors;
    EXPECT_LE(size(), least);
    EXPECT_EQ(sizeInKernel(), least);
    EXPECT_TRUE(hasData(mounted.folder()));
}

TEST_F(DiskUtilResize, SizesHaveUnits) {
    prepare();
    EXPECT_EQ(runUtility({"resizeVolume", name(), "40960kB"}).status, 0);
    EXPECT_EQ(size(), 40960000u);
    EXPECT_EQ(runUtility({"resizeVolume", name(), "0.049152G"}).status, 0);
    EXPECT_EQ(size(), 49152000u);
    EXPECT_EQ(runUtility({"resizeVolume", name(), "45M"}).status, 0);
    EXPECT_EQ(size(), 45000000u / 1024 * 1024) << "whole blocks";
    EXPECT_EQ(sizeInKernel(), (45000000u + 511) / 512 * 512) << "whole sectors";
}

TEST_F(DiskUtilResize, WhatTheDataDoesNotLeaveRoomForIsRefused) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    writeData(mounted.folder());
    expectRefusal("0B", "needs at least");
    expectRefusal(bytes(minimum() - 4096), "needs at least");
    EXPECT_TRUE(hasData(mounted.folder()));
}

TEST_F(DiskUtilResize, WhatTheDiskDoesNotLeaveRoomForIsRefused) {
    prepare();
    expectRefusal(bytes(79 * mebibyte + 512), "has room for at most");
    expectRefusal("9T", "has room for at most");
    expectRefusal("9223372036854775807B", "has room for at most"); // the largest size there is
}

TEST_F(DiskUtilResize, ASliceThatOnlyTheKernelKnowsIsNotTouched) {
    prepare();
    ASSERT_TRUE(disk.addPartition(5, 60 * mebibyte, mebibyte));
    EXPECT_EQ(maximum(), 59 * mebibyte);
    expectRefusal(bytes(59 * mebibyte + 4096), "has room for at most");
    expectResize(59 * mebibyte);
}

TEST_F(DiskUtilResize, WithoutATableOnlyTheFileSystemChanges) {
    ASSERT_TRUE(disk.addPartition(1, mebibyte, 48 * mebibyte));
    makeVolume();
    EXPECT_EQ(maximum(), 48 * mebibyte);
    EXPECT_EQ(resize(40 * mebibyte).status, 0);
    EXPECT_EQ(size(), 40 * mebibyte);
    EXPECT_EQ(sizeInKernel(), 48 * mebibyte);
    EXPECT_EQ(resize(48 * mebibyte).status, 0);
    EXPECT_EQ(size(), 48 * mebibyte);
}

TEST_F(DiskUtilResize, AnEntryOfAnotherPlaceIsLeftAlone) {
    partition();
    // The kernel has been told something else than the table.
    disk.removePartition(1);
    ASSERT_TRUE(disk.addPartition(1, 2 * mebibyte, 40 * mebibyte));
    makeVolume();
    EXPECT_EQ(maximum(), 40 * mebibyte);
    EXPECT_EQ(resize(36 * mebibyte).status, 0);
    EXPECT_EQ(sizeInTable(), 48 * mebibyte);
    EXPECT_EQ(sizeInKernel(), 40 * mebibyte);
}

TEST_F(DiskUtilResize, AWholeDiskHasNoOtherSize) {
    ASSERT_TRUE(KxTest::makeFileSystem(disk.path(), "Whole"));
    const ProgramResult shown = runUtility({"resizeVolume", "Whole", "100M"});
    EXPECT_EQ(shown.status, 0) << shown.errors;
    const std::string text = runUtility({"resizeVolume", "Whole", "limits"}).output;
    EXPECT_EQ(sizeIn(text, "Current size:"), 100000000u / 4096 * 4096);
    EXPECT_EQ(sizeIn(text, "Maximum size:"), 128 * mebibyte);
}

TEST_F(DiskUtilResize, OtherFileSystemsAreRefused) {
    partition();
    ASSERT_EQ(runProgram({"/usr/sbin/mkswap", slicePath()}).status, 0);
    for (const char* operand : {"limits", "40M"}) {
        const ProgramResult shown = runUtility({"resizeVolume", name(), operand});
        EXPECT_EQ(shown.status, 1);
        EXPECT_THAT(shown.errors, HasSubstr("its file system is swap"));
        EXPECT_EQ(runUtility({"resizeVolume", name(2), operand}).status, 1);
    }
}

TEST_F(DiskUtilResize, AVolumeInUseIsNotTakenOff) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    const int use = open(mounted.folder().c_str(), O_RDONLY | O_CLOEXEC);
    expectRefusal("40M", "busy");
    close(use);
    EXPECT_EQ(resize(40 * mebibyte).status, 0);
}

TEST_F(DiskUtilResize, AVolumeThatIsMountedInPartsIsNotTakenOff) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    fs::create_directory(mounted.folder() + "/inner");
    const Mounted part(mounted.folder() + "/inner", fs::current_path() / "part", nullptr, MS_BIND);
    ASSERT_TRUE(part.isMounted());
    expectRefusal("40M", "a part of it is mounted");
}

TEST_F(DiskUtilResize, AVolumeThatOthersHaveMountedIsNotTouched) {
    prepare();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t other = fork();
    if (other == 0) {
        const bool isMounted = unshare(CLONE_NEWNS) == 0 &&
                               mount(slicePath().c_str(), "/Korvex", "ext4", 0, nullptr) == 0;
        (void)!write(ends[1], isMounted ? "y" : "n", 1);
        pause();
        _exit(0);
    }
    char answer = 0;
    EXPECT_EQ(read(ends[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    EXPECT_EQ(mountPointsOf(node()), "");
    const ProgramResult shown = resize(40 * mebibyte);
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, HasSubstr("cannot be changed now"));
    EXPECT_EQ(sizeInTable(), 48 * mebibyte);
}

TEST_F(DiskUtilResize, ADamagedFileSystemIsLeftAlone) {
    prepare();
    // Two files whose contents claim the same blocks: nothing that is mended without a question.
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    std::ofstream(mounted.folder() + "/a") << std::string(4 * mebibyte, 'a');
    std::ofstream(mounted.folder() + "/b") << std::string(4 * mebibyte, 'b');
    ASSERT_EQ(runUtility({"unmount", name()}).status, 0);
    const std::string command = "debugfs -w -R 'copy_inode /a /b' " + slicePath() + " 2>&1";
    ASSERT_EQ(runProgram({"/bin/sh", "-c", command}).status, 0);
    const ProgramResult shown = resize(40 * mebibyte);
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.errors, HasSubstr("needs to be repaired first"));
    EXPECT_EQ(sizeInTable(), 48 * mebibyte);
}

TEST_F(DiskUtilResize, AReadOnlyDiskIsNotChanged) {
    prepare();
    const int device = open(disk.path().c_str(), O_RDONLY | O_CLOEXEC);
    int readOnly = 1;
    ASSERT_EQ(ioctl(device, BLKROSET, &readOnly), 0);
    EXPECT_GT(minimum(), 0u) << "looking is possible";
    EXPECT_EQ(resize(40 * mebibyte).status, 1);
    readOnly = 0;
    ioctl(device, BLKROSET, &readOnly);
    close(device);
    EXPECT_TRUE(isClean());
    EXPECT_EQ(size(), 48 * mebibyte);
}

TEST_F(DiskUtilResize, OnlyOneChangesADiskAtATime) {
    prepare();
    const int device = open(disk.path().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(device, LOCK_EX), 0);
    expectRefusal("40M", "someone else");
    close(device);
    EXPECT_EQ(resize(40 * mebibyte).status, 0);
}

TEST_F(DiskUtilResize, TheSameSizeAgainIsASuccessAndFinishesWhatWasInterrupted) {
    prepare();
    ASSERT_EQ(runProgram({"/bin/sh", "-c",
                          "e2fsck -fp " + slicePath() + " && resize2fs " + slicePath() + " 40M"})
                  .status,
              0);
    EXPECT_EQ(sizeInTable(), 48 * mebibyte) << "the slice has not followed";
    expectResize(40 * mebibyte);
    expectResize(40 * mebibyte);
}

namespace {

/// Starts a resize in a process group of its own. \return Its process.
pid_t startResize(const std::string& name, const std::string& size) {
    const pid_t process = fork();
    if (process == 0) {
        setpgid(0, 0);
        execl("/usr/sbin/diskutil", "diskutil", "resizeVolume", name.c_str(), size.c_str(),
              nullptr);
        _exit(127);
    }
    return process;
}

} // namespace

TEST_F(DiskUtilResize, RequestsToEndWaitUntilTheWorkIsDone) {
    prepare();
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    writeData(mounted.folder());
    const pid_t process = startResize(name(), bytes(40 * mebibyte));
    // As soon as the volume is off, the work has begun.
    while (!mountPointsOf(node()).empty() && waitpid(process, nullptr, WNOHANG) == 0) {
    }
    kill(-process, SIGTERM);
    kill(-process, SIGHUP);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(mountPointsOf(node()), mounted.folder() + ' ');
    EXPECT_TRUE(hasData(mounted.folder()));
    EXPECT_EQ(size(), 40 * mebibyte);
    EXPECT_EQ(sizeInTable(), 40 * mebibyte);
}

TEST_F(DiskUtilResize, AFileSystemWhoseProgramWasKilledCanBePutInOrder) {
    prepare();
    bool wasEverCut = false;
    for (int round = 0; round < 12; ++round) {
        {
            const Mounted mounted(slicePath(), fs::current_path() / "place");
            ASSERT_TRUE(mounted.isMounted());
            if (round % 4 == 0)
                writeData(mounted.folder(), 12 * mebibyte);
            ASSERT_TRUE(hasData(mounted.folder()));
        }
        // A little later each time; the program and the file system's own are killed together.
        const std::string size = bytes((round % 2 == 0 ? 40 : 79) * mebibyte);
        const std::string command = "unshare --pid --fork --kill-child timeout -s KILL 0.0" +
                                    std::to_string(20 + 6 * round) +
                                    " /usr/sbin/diskutil resizeVolume " + name() + ' ' + size +
                                    " >/dev/null 2>&1";
        wasEverCut |= runProgram({"/bin/sh", "-c", command}).status != 0;
        const int checked = runProgram({"/usr/sbin/e2fsck", "-f", "-y", slicePath()}).status;
        ASSERT_LE(checked, 1) << "in order, or mended";
        EXPECT_GE(sizeInKernel(), this->size()) << "the slice holds the file system";
        EXPECT_TRUE(isOtherSliceIntact());
    }
    EXPECT_TRUE(wasEverCut);
    const Mounted mounted(slicePath(), fs::current_path() / "place");
    EXPECT_TRUE(hasData(mounted.folder()));
}
