#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// A partition, or a whole device, as the kernel lists it.
struct BlockDevice {
    std::string systemName; ///< The folder's name: "sda1", "cciss!c0d0"
    std::string path;       ///< The node: "/dev/cciss/c0d0"
    unsigned major = 0;
    unsigned minor = 0;
    unsigned partition = 0; ///< 0 for a whole device
};

/// A whole device with a medium.
struct AttachedDisk {
    BlockDevice device;
    /// Differs for whatever was attached since the machine was started, and for each medium of a
    /// drive; 0 from kernels that do not tell.
    unsigned long long sequence = 0;
    bool isPhysical = false; ///< Whether a piece of hardware is behind it
};

/// The kernel's list of block devices. The folder "/sys" can be another one, which looks like it.
class BlockDevices {
public:
    explicit BlockDevices(std::string atFolder = "/sys") : folder(std::move(atFolder)) {}

    /// The whole devices with media, those that were attached first in front.
    [[nodiscard]] std::vector<AttachedDisk> disks() const;

    /// The whole device of a name, if it has a medium.
    [[nodiscard]] std::optional<AttachedDisk> disk(const std::string& systemName) const;

    /// The partitions of a whole device, by number.
    [[nodiscard]] std::vector<BlockDevice> partitions(const std::string& diskName) const;

    /// The device with a number, and the whole device that it is or is part of.
    struct Found {
        BlockDevice device;
        AttachedDisk disk;
    };
    [[nodiscard]] std::optional<Found> find(unsigned major, unsigned minor) const;

private:
    std::string folder;
};

} // namespace Korvex
