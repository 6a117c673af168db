#pragma once

#include "platform/volumetable.h"

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// A walk over the volumes by their index, which begins at 1. The table is read once.
class VolumeWalk {
public:
    VolumeWalk() : volumes(volumeTable().volumes()) {}

    /// The volume of an index; one with error −35 behind the last.
    [[nodiscard]] const Volume& at(std::size_t index) const;

    [[nodiscard]] auto begin() const { return volumes.begin(); }
    [[nodiscard]] auto end() const { return volumes.end(); }

private:
    std::vector<Volume> volumes;
};

/// The partial identifier in a device's name; nothing when it is no "disk%ds%d". What follows is
/// not looked at, and the slice may be missing.
[[nodiscard]] std::optional<unsigned short> partialIdOf(const std::string& device);

/// The numbers of errors as callers get them: 16 bits with a sign.
[[nodiscard]] inline int narrowed(int error) {
    return static_cast<short>(error);
}

} // namespace Korvex
