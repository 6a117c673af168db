#pragma once

#include <string>

namespace DiskUtil {

/// What is to be mounted, and how.
struct MountRequest {
    std::string source;
    std::string target;
    std::string type; ///< Empty when that is to be found out
    std::string options;
};

/// Mounts, in this process's namespace. Throws \ref Failure.
void mountNow(const MountRequest& request);

/// Unmounts what is mounted at a folder; never something that is in use. Throws \ref Failure.
void unmountNow(const std::string& target);

} // namespace DiskUtil
