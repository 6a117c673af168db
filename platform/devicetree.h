#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// Something in the chain from a device to the hardware that it hangs on.
struct DeviceTreeEntry {
    bool isMedium = false;       ///< A disk or a slice of one
    std::optional<bool> isWhole; ///< Whether it is a whole disk; nothing when that is not told
    bool isCD = false;
    bool isDVD = false;
    std::string className; ///< Of its driver
};

/// The way from a device up to the root of the devices.
struct DeviceAncestry {
    enum class Result {
        Found,
        NoQuery,       ///< The device cannot be asked for
        NoDevice,      ///< There is no such device
        WalkFailed,    ///< The way cannot be gone; `error` says why
        NothingToWalk, ///< There is no way
    };
    Result result = Result::Found;
    int error = 0;
    std::vector<DeviceTreeEntry> entries; ///< The device itself first
};

/// How devices hang together. Any thread may ask.
class DeviceTree {
public:
    virtual ~DeviceTree() = default;

    /// \param disk "disk1s2".
    [[nodiscard]] virtual DeviceAncestry ancestryOf(const std::string& disk) = 0;
};

/// The tree in force.
DeviceTree& deviceTree();

} // namespace Korvex
