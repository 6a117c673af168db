#pragma once

#include "platform/disknames.h"

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// One line of the kernel's table of mounts.
struct Mount {
    int id = 0;         ///< Its own while it is mounted
    unsigned major = 0; ///< Of the file system's device number; 0 for one that is on no device
    unsigned minor = 0;
    std::string target; ///< The mount point
    std::string source;
    std::string type;
    bool isNetworked = false;
    bool isReadOnly = false;

    /// The disk or slice that it lies on.
    [[nodiscard]] std::optional<DiskNode> node() const;
};

/// What is mounted in this process's namespace, in the order of mounting. Nothing is asked of the
/// file systems themselves.
[[nodiscard]] std::vector<Mount> mounts();

/// The mounts of a disk or slice among others, in the same order.
[[nodiscard]] std::vector<Mount> mountsOf(const DiskNode& node, const std::vector<Mount>& all);

} // namespace Korvex
