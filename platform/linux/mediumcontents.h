#pragma once

#include "platform/disknames.h"
#include "platform/linux/mounts.h"

#include <string>

namespace Korvex {

/// What lies on a disk or slice, as far as this process may look. Empty texts are not known.
struct MediumContents {
    std::string label;
    std::string uuid;
    std::string type;          ///< Of the file system: "ext4"
    std::string tableType;     ///< Of the partition table on a whole disk: "gpt", "dos"
    std::string partitionType; ///< What the table says that a slice is for
    bool isFileSystem = false; ///< Something that can be mounted, no swap space, no member of a set
};

/// Looks at the medium itself, or at what the device manager has written down about it where this
/// process may not.
/// \param mount Where it is mounted; may be null.
[[nodiscard]] MediumContents contentsOf(const DiskNode& node, const Mount* mount);

} // namespace Korvex
