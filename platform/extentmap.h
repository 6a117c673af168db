#pragma once

#include <optional>
#include <vector>

namespace Korvex {

/// A part of a file that lies in one piece. All three are in bytes.
struct Extent {
    unsigned long long logical;  ///< Where it begins in the file
    unsigned long long physical; ///< Where it begins on the device of the file system
    unsigned long long length;
};

/// Where files lie on their devices. Any thread may ask.
class ExtentMap {
public:
    virtual ~ExtentMap() = default;

    /// The whole map of a file, once what was written to it has reached the device.
    ///
    /// \param length Bytes from the beginning that matter.
    /// \return The extents in the order of the file, without overlap; holes are left out. Nothing
    /// when there is no such map or a part of the file lies in no blocks of its own.
    [[nodiscard]] virtual std::optional<std::vector<Extent>>
    extentsOf(int descriptor, unsigned long long length) = 0;
};

/// The map in force.
ExtentMap& extentMap();

} // namespace Korvex
