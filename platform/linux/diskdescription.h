#pragma once

#include "platform/disknames.h"

#include <KxQts/corefoundation.h>

namespace Korvex {

/// Everything that is known of a disk or slice, under the published keys. The caller releases it.
/// \return Null when it is gone, or there is no memory.
[[nodiscard]] CFDictionaryRef describeDisk(const DiskNode& node);

} // namespace Korvex
