#include "common/loopdisk.h"
#include "common/program.h"
#include "platform/disknames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::LoopDisk;
using KxTest::Mounted;
using KxTest::runProgram;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kx = KX_PROGRAM;
constexpr unsigned long long mebibyte = 1 << 20;

class KxDisks : public testing::Test {
protected:
    void SetUp() override {
        if (!LoopDisk::isPossible())
            GTEST_SKIP() << "attaching disks needs root's rights and loop devices";
        disk = std::make_unique<LoopDisk>(16 * mebibyte);
        ASSERT_TRUE(disk->isAttached() && disk->addPartition(1, mebibyte, 12 * mebibyte));
        ASSERT_TRUE(KxTest::makeFileSystem(disk->partitionPath(1), "My\tData"));
        struct stat status {};
        ASSERT_EQ(stat(disk->path().c_str(), &status), 0);
        node = Korvex::diskNodeOfDevice(major(status.st_rdev), minor(status.st_rdev)).value();
    }
    [[nodiscard]] std::string identifier(unsigned slice) const {
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), "0x%08x", slice << 8 | node.disk);
        return text.data();
    }
    static std::string here(const std::string& name) { return fs::current_path() / name; }

    std::unique_ptr<LoopDisk> disk;
    Korvex::DiskNode node;
};

} // namespace

TEST_F(KxDisks, ListsDisksWithTheirSlices) {
    const Mounted mounted(disk->partitionPath(1), here("place"));
    const auto result = runProgram({kx, "disks"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, IsEmpty());
    EXPECT_THAT(result.output,
                ContainsRegex(identifier(0) + "  " + node.name() + "  +" + disk->path() +
                              " +16.0 MiB .* -  +-  +Virtual Interface"));
    EXPECT_THAT(result.output,
                ContainsRegex(identifier(1) + "    " + node.name() + "s1  +" +
                              disk->partitionPath(1) + " +12.0 MiB  +ext4 .*My\\\\x09Data  +" +
                              mounted.folder()));
}

TEST_F(KxDisks, ListsTheDisksThatAreNamed) {
    const auto result = runProgram({kx, "disks", node.name() + "s1", "/dev/" + node.name()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 3);
    const auto missing = runProgram({kx, "disks", "disk9999"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.errors, HasSubstr("there is no disk disk9999"));
}

TEST_F(KxDisks, AreCompletedByTheirNames) {
    EXPECT_THAT(runProgram({kx, "--complete", "disks", node.name() + "s"}).output,
                HasSubstr(node.name() + "s1\n"));
}

TEST_F(KxDisks, ListsVolumes) {
    const Mounted mounted(disk->partitionPath(1), here("place"));
    const auto result = runProgram({kx, "volumes"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, IsEmpty());
    EXPECT_THAT(result.output, ContainsRegex(identifier(1) + "  /dev/" + node.name() + "s1  +" +
                                             disk->partitionPath(1) + "  +My\\\\x09Data  +" +
                                             mounted.folder() + " +ext4"));
    EXPECT_THAT(result.output, Not(HasSubstr("tmpfs")));
    EXPECT_EQ(runProgram({kx, "volumes", "operand"}).status, 2);
}

TEST_F(KxDisks, DrawsWhereAFileIs) {
    const Mounted mounted(disk->partitionPath(1), here("place"));
    const std::string file = mounted.folder() + "/file";
    std::ofstream(file) << std::string(mebibyte, 'x');
    const auto result = runProgram({kx, "map", file});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, IsEmpty());
    EXPECT_THAT(result.output, HasSubstr(file + ": 1048576 bytes on /dev/" + node.name() +
                                         "s1, blocks of 512 bytes\n"));
    EXPECT_THAT(result.output, ContainsRegex("RUN +IN THE FILE +FIRST BLOCK +BLOCKS +SIZE\n"));
    EXPECT_THAT(result.output, ContainsRegex("  1 +0 +[0-9]+ +[0-9]+ +[0-9.]+ [KM]iB\n"));
    const std::size_t begin = result.output.rfind("\n[");
    ASSERT_NE(begin, std::string::npos);
    const std::string bar = result.output.substr(begin + 2, 64);
    EXPECT_GE(std::count(bar.begin(), bar.end(), '#'), 5) << "a twelfth of 64";
    EXPECT_GE(std::count(bar.begin(), bar.end(), '.'), 40);
    EXPECT_EQ(result.output.substr(begin + 66), "]\n");
}

TEST(KxMap, SaysWhyThereIsNone) {
    const auto folder = runProgram({kx, "map", "/dev/shm"});
    EXPECT_EQ(folder.status, 1);
    EXPECT_THAT(folder.errors, HasSubstr("/dev/shm: it lies on no disk of this machine"));
    EXPECT_EQ(runProgram({kx, "map"}).status, 2);
}
