#pragma once

#include "platform/disknames.h"

#include <string>
#include <vector>

namespace Korvex {

/// Where the kernel keeps what it tells about a device: the folder's path without links; empty
/// when it is gone.
[[nodiscard]] std::string deviceFolder(const DiskNode& node);

/// The same of the whole disk that it is or is part of.
[[nodiscard]] std::string diskFolder(const DiskNode& node);

/// The folders of a device and of everything that it hangs on, the device first.
[[nodiscard]] std::vector<std::string> ancestry(const std::string& folder);

/// The name of the driver that serves a device; what its kind is called where none is named.
[[nodiscard]] std::string driverOf(const std::string& folder);

} // namespace Korvex
