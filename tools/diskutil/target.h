#pragma once

#include "volume.h"

#include <string>

namespace DiskUtil {

/// The disk, slice or volume that a word of the command line names: by a mount point, a device in
/// the library's or the system's terms, or the name of a volume. Throws \ref Failure when there is
/// none, and when several volumes have the name.
Volume volumeNamed(const std::string& word);

} // namespace DiskUtil
