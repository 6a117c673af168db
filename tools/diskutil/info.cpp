#include "commands.h"
#include "size.h"
#include "target.h"
#include "text.h"

#include <cstdio>
#include <sys/statvfs.h>

namespace DiskUtil {

namespace {

void line(const char* label, const std::string& value) {
    if (!value.empty())
        std::printf("   %-20s %s\n", (std::string(label) + ':').c_str(), value.c_str());
}

/// What is left for users other than root.
void printFreeSpace(const Volume& volume) {
    struct statvfs status {};
    if (!volume.isMounted() || statvfs(volume.mounts.front().target.c_str(), &status) != 0)
        return;
    line("Free Space", shownSize(1ULL * status.f_bavail * status.f_frsize));
}

} // namespace

void info(const Operands& operands) {
    const Volume volume = volumeNamed(operands[0]);
    line("Device Identifier", volume.node.name());
    line("Device Node", volume.node.path);
    line("Part of Whole", "disk" + std::to_string(volume.node.disk));
    line("Total Size", shownSize(sizeOf(volume.node)));
    // Programs take the first line with "Space:". It stands in front of all that someone could
    // have written to a medium or into a path.
    printFreeSpace(volume);
    line("Mounted", volume.isMounted() ? "Yes" : "No");
    line("File System", printable(volume.contents.type));
    line("Partition Table", printable(volume.contents.tableType));
    line("Partition Type", printable(volume.contents.partitionType));
    line("Volume UUID", printable(volume.contents.uuid));
    line("Volume Name", printable(volume.name()));
    for (const Korvex::Mount& mount : volume.mounts)
        line("Mount Point", printable(mount.target));
}

} // namespace DiskUtil
