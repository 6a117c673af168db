#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Korvex {

/// A disk or one of its slices, as the library names it and as the system does.
///
/// Every whole block device with a medium is a disk, every partition of one a slice with the
/// partition's number. A disk keeps its number while it is attached, whoever asks and for however
/// long; the number is free again when the disk is gone or its medium has changed. Free numbers are
/// given from 0 upwards, to physical disks first.
struct DiskNode {
    unsigned disk = 0;      ///< N of "diskN"
    unsigned slice = 0;     ///< M of "diskNsM"; 0 for the whole disk
    unsigned major = 0;     ///< Of the device's number
    unsigned minor = 0;     ///< Of the device's number
    std::string systemName; ///< What the system calls it, in its own folders too: "sda1"
    std::string path;       ///< The device's node: "/dev/sda1"
    /// Tells the disk from others that have had its number; the same for its slices.
    unsigned long long sequence = 0;

    /// "diskN" or "diskNsM".
    [[nodiscard]] std::string name() const;
};

/// \name Looking disks up
/// Any thread may ask. Nothing is opened that could wait for a drive, and no service is needed.
/// Numbers that are new are kept in the run-time folder; a process that may not write there gives
/// the same numbers as long as the same disks are attached. They throw `std::bad_alloc` without
/// memory, and fail in no other way. `errno` is left alone.
/// @{

/// All that are attached, each disk before its slices, by number.
[[nodiscard]] std::vector<DiskNode> diskNodes();

/// The disk or slice of a name: "disk1", "disk1s2". Nothing else is put in front or behind.
[[nodiscard]] std::optional<DiskNode> diskNode(std::string_view name);

/// The disk or slice with a device number.
[[nodiscard]] std::optional<DiskNode> diskNodeOfDevice(unsigned major, unsigned minor);
/// @}

} // namespace Korvex
