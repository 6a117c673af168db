#include "disk/volumewalk.h"

#include <KxQts/platformtypes.h>

#include <cstdio>

namespace Korvex {

const Volume& VolumeWalk::at(std::size_t index) const {
    static const auto* const none = [] {
        auto* made = new Volume;
        made->error = nsvErr;
        return made;
    }();
    return index >= 1 && index <= volumes.size() ? volumes[index - 1] : *none;
}

std::optional<unsigned short> partialIdOf(const std::string& device) {
    int disk = 0;
    int slice = 0;
    // NOLINTNEXTLINE(cert-err34-c): what is missing or out of range is what callers expect as 0
    if (std::sscanf(device.c_str(), "disk%9ds%9d", &disk, &slice) < 1)
        return std::nullopt;
    return static_cast<unsigned short>(static_cast<unsigned>(slice) << 8 |
                                       static_cast<unsigned>(disk));
}

} // namespace Korvex
