// Names of the disks of this machine, and of some that the tests attach.

#include "platform/disknames.h"

#include "common/loopdisk.h"
#include "common/unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <sys/stat.h>
#include <sys/sysmacros.h>

using Korvex::DiskNode;
using KxTest::LoopDisk;

namespace {

constexpr unsigned long long mebibyte = 1 << 20;

std::optional<DiskNode> nodeOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return Korvex::diskNodeOfDevice(major(status.st_rdev), minor(status.st_rdev));
}

class DiskNames : public testing::Test {
protected:
    void SetUp() override {
        if (!LoopDisk::isPossible())
            GTEST_SKIP() << "attaching disks needs root's rights and loop devices";
    }
};

} // namespace

TEST(DiskNode, IsNamedByItsNumbers) {
    DiskNode node;
    EXPECT_EQ(node.name(), "disk0");
    node.disk = 12;
    node.slice = 3;
    EXPECT_EQ(node.name(), "disk12s3");
}

TEST(DiskNode, OfEveryDiskOfTheMachineIsFoundByNameAndByNumber) {
    std::set<std::string> names;
    unsigned last = 0;
    for (const DiskNode& node : Korvex::diskNodes()) {
        EXPECT_TRUE(names.insert(node.name()).second) << "twice: " << node.name();
        EXPECT_GE(node.disk, last);
        last = node.disk;
        const auto byName = Korvex::diskNode(node.name());
        if (!byName)
            continue; // others attach and detach disks meanwhile
        EXPECT_EQ(byName->disk, node.disk);
        EXPECT_EQ(byName->slice, node.slice);
    }
}

TEST_F(DiskNames, StandForTheDiskWhileItIsAttached) {
    LoopDisk disk(4 * mebibyte);
    ASSERT_TRUE(disk.isAttached());
    const auto node = nodeOf(disk.path());
    ASSERT_TRUE(node);
    EXPECT_EQ(node->path, disk.path());
    EXPECT_EQ(node->slice, 0u);
    const auto byName = Korvex::diskNode(node->name());
    ASSERT_TRUE(byName);
    EXPECT_EQ(byName->path, disk.path());

    LoopDisk second(4 * mebibyte);
    const auto secondNode = nodeOf(second.path());
    ASSERT_TRUE(secondNode);
    EXPECT_NE(secondNode->disk, node->disk);
    EXPECT_EQ(nodeOf(disk.path())->disk, node->disk);

    const std::string name = node->name();
    disk.detach();
    const auto after = Korvex::diskNode(name);
    EXPECT_TRUE(!after || after->sequence != node->sequence) << "it may be another's now";
    EXPECT_EQ(nodeOf(second.path())->disk, secondNode->disk);
}

TEST_F(DiskNames, HaveTheNumbersOfPartitions) {
    LoopDisk disk(8 * mebibyte);
    ASSERT_TRUE(disk.isAttached());
    ASSERT_TRUE(disk.addPartition(1, mebibyte, 2 * mebibyte));
    ASSERT_TRUE(disk.addPartition(5, 3 * mebibyte, 2 * mebibyte));
    const auto whole = nodeOf(disk.path());
    const auto slice = nodeOf(disk.partitionPath(5));
    ASSERT_TRUE(whole && slice);
    EXPECT_EQ(slice->name(), whole->name() + "s5");
    EXPECT_EQ(Korvex::diskNode(slice->name())->path, disk.partitionPath(5));
    EXPECT_FALSE(Korvex::diskNode(whole->name() + "s2"));

    std::vector<std::string> names;
    for (const DiskNode& node : Korvex::diskNodes()) {
        if (node.disk == whole->disk)
            names.push_back(node.name());
    }
    EXPECT_EQ(names, (std::vector{whole->name(), whole->name() + "s1", whole->name() + "s5"}));
}

TEST_F(DiskNames, AreTheSameForAUserWithoutRights) {
    const LoopDisk disk(4 * mebibyte);
    ASSERT_TRUE(disk.isAttached());
    const auto node = nodeOf(disk.path());
    ASSERT_TRUE(node);
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] { EXPECT_EQ(nodeOf(disk.path())->disk, node->disk); }));
}

TEST_F(DiskNames, TakeNoOtherFormAndLeaveErrnoAlone) {
    const LoopDisk disk(4 * mebibyte);
    const std::string name = nodeOf(disk.path()).value_or(DiskNode{}).name();
    errno = 99;
    ASSERT_TRUE(Korvex::diskNode(name));
    for (const std::string& wrong :
         {"/dev/" + name, name + "s", name + "s0", name + "s01", name + ' ',
          "disk0" + name.substr(4), std::string("disk"), std::string("disk-1"), std::string(),
          std::string("disks1"), std::string("disk99999999999"), std::string("loop0")})
        EXPECT_FALSE(Korvex::diskNode(wrong)) << wrong;
    EXPECT_FALSE(Korvex::diskNodeOfDevice(0, 0));
    EXPECT_FALSE(Korvex::diskNodeOfDevice(1, 3));
    EXPECT_EQ(errno, 99);
}
