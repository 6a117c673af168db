#pragma once

#include "common/loopdisk.h"
#include "platform/disknames.h"

#include <KxQts/disk/volumeid.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace KxTest {

inline constexpr unsigned long long mebibyte = 1 << 20;

/// The disk or slice of a device node.
[[nodiscard]] std::optional<Korvex::DiskNode> nodeOf(const std::string& path);

[[nodiscard]] KX_DEV_VOL_UNION idOf(const Korvex::DiskNode& node);

/// A test with a disk of its own, which has a slice 1 of 24 MiB with a file system labelled "Data
/// One" and a slice 2 with nothing. Where the rights to attach disks are missing, the test skips
/// itself.
class RealDisk : public testing::Test {
protected:
    RealDisk() : disk(LoopDisk::isPossible() ? 32 * mebibyte : 0) {}
    void SetUp() override;

    /// A path in the test's folder.
    [[nodiscard]] static std::string here(const std::string& name);

    LoopDisk disk;
    Korvex::DiskNode whole;
    Korvex::DiskNode slice;
};

} // namespace KxTest
