#include "realdisk.h"

#include <filesystem>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace KxTest {

std::optional<Korvex::DiskNode> nodeOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return Korvex::diskNodeOfDevice(major(status.st_rdev), minor(status.st_rdev));
}

KX_DEV_VOL_UNION idOf(const Korvex::DiskNode& node) {
    KX_DEV_VOL_UNION id{};
    id.deviceNumber = static_cast<std::uint8_t>(node.disk);
    id.volumeNumber = static_cast<std::uint8_t>(node.slice);
    return id;
}

void RealDisk::SetUp() {
    if (!LoopDisk::isPossible())
        GTEST_SKIP() << "attaching disks needs root's rights and loop devices";
    ASSERT_TRUE(disk.isAttached());
    ASSERT_TRUE(disk.addPartition(1, mebibyte, 24 * mebibyte));
    ASSERT_TRUE(disk.addPartition(2, 25 * mebibyte, 4 * mebibyte));
    ASSERT_TRUE(makeFileSystem(disk.partitionPath(1), "Data One"));
    whole = nodeOf(disk.path()).value_or(Korvex::DiskNode{});
    slice = nodeOf(disk.partitionPath(1)).value_or(Korvex::DiskNode{});
    ASSERT_EQ(whole.path, disk.path());
    ASSERT_EQ(slice.path, disk.partitionPath(1));
}

std::string RealDisk::here(const std::string& name) {
    return std::filesystem::current_path() / name;
}

} // namespace KxTest
