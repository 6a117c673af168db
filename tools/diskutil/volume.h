#pragma once

#include "platform/disknames.h"
#include "platform/linux/mediumcontents.h"
#include "platform/linux/mounts.h"

#include <optional>
#include <string>
#include <vector>

namespace DiskUtil {

/// A disk or slice with what lies on it.
struct Volume {
    Korvex::DiskNode node;
    Korvex::MediumContents contents;
    std::vector<Korvex::Mount> mounts; ///< In the order of mounting

    [[nodiscard]] bool isMounted() const { return !mounts.empty(); }

    /// The label, or else the last component of the mount point; empty when there is neither.
    [[nodiscard]] std::string name() const;

    /// For messages: "disk1s2 (Data One)".
    [[nodiscard]] std::string shown() const;
};

/// Looks at a disk or slice.
Volume volumeOn(const Korvex::DiskNode& node);

/// All disks and slices, each disk in front of its slices.
std::vector<Volume> allVolumes();

/// A disk and its slices.
std::vector<Volume> volumesOfDisk(const Korvex::DiskNode& node);

/// How many bytes a device holds; 0 when that cannot be told.
unsigned long long sizeOf(const Korvex::DiskNode& node);

} // namespace DiskUtil
