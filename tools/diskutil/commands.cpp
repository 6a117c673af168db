#include "commands.h"

#include <array>

namespace DiskUtil {

namespace {

constexpr std::array table{
    Command{"list", "", "Shows all disks, their slices and what lies on them", 0, list},
    Command{"info", "NAME", "Shows what is known of a disk, slice or volume", 1, info},
    Command{"mount", "NAME", "Mounts a volume at /Volumes", 1, mountVolume},
    Command{"unmount", "NAME", "Unmounts a volume", 1, unmountVolume},
    Command{"mountDisk", "NAME", "Mounts all volumes of a disk", 1, mountDisk},
    Command{"unmountDisk", "NAME", "Unmounts all volumes of a disk", 1, unmountDisk},
    Command{"resizeVolume", "NAME SIZE|limits", "Changes a volume's size, or shows what it can be",
            2, resizeVolume},
};

} // namespace

std::span<const Command> commands() {
    return table;
}

} // namespace DiskUtil
