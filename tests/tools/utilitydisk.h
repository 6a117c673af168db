#pragma once

#include "common/loopdisk.h"
#include "common/program.h"
#include "platform/disknames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace KxTest {

inline constexpr unsigned long long mebibyte = 1 << 20;

/// Runs the disk utility.
ProgramResult runUtility(std::vector<std::string> operands);

/// One line of what it shows in the form "label: ... (NUMBER Bytes)"; 0 when there is none.
unsigned long long sizeIn(const std::string& text, const std::string& label);

/// Tests with a disk of 128 MiB of their own, its slices and the utility at its fixed place.
/// Where the rights to attach disks are missing, they skip themselves.
class UtilityDisk : public testing::Test {
protected:
    UtilityDisk();
    ~UtilityDisk() override;
    void SetUp() override;

    /// Writes a partition table and announces its slices: 1 from 1 MiB with 48 MiB, 2 from 80 MiB
    /// with 16 MiB, which is full of a pattern.
    void partition(const std::string& tableType = "gpt");

    /// Makes a file system in the first slice.
    void makeVolume(const std::string& label = "Data One") const;

    /// Overwrites a part of the first slice with zeros.
    void wipe(unsigned long long place, unsigned long long size) const;

    /// Writes a file of random bytes to the mounted volume and keeps its checksum.
    void writeData(const std::string& folder, unsigned long long size = 8 * mebibyte);
    /// Whether the file is as it was written.
    [[nodiscard]] bool hasData(const std::string& folder) const;

    /// Whether the second slice has its pattern and its entry in the table.
    [[nodiscard]] bool isOtherSliceIntact() const;

    /// The bytes of the first slice, in the partition table and for the kernel.
    [[nodiscard]] unsigned long long sizeInTable(unsigned slice = 1) const;
    [[nodiscard]] unsigned long long sizeInKernel() const;

    /// Whether the file system in the first slice needs no repair.
    [[nodiscard]] bool isClean() const;

    [[nodiscard]] Korvex::DiskNode node(unsigned slice = 1) const;
    [[nodiscard]] std::string name(unsigned slice = 1) const { return node(slice).name(); }
    [[nodiscard]] std::string slicePath() const { return disk.partitionPath(1); }

    /// Where volumes are mounted.
    [[nodiscard]] static std::string volumes(const std::string& name = {});

    LoopDisk disk;

private:
    std::string checksum;
};

/// Where a device is mounted: mount points with a blank behind each.
std::string mountPointsOf(const Korvex::DiskNode& node);

/// The options of a mount point.
std::string mountOptions(const std::string& folder);

/// The checksum of a file; empty when it cannot be read.
std::string checksumOf(const std::string& path);

} // namespace KxTest
