#pragma once

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation/url.h>

namespace Korvex {

/// The file of the running program; null when the system does not tell.
[[nodiscard]] Cf::Owned<CFURLRef> mainExecutable();

/// The bundle that the running program is: the folder "NAME.app" whose "Contents/MacOS" it lies in,
/// or else the folder that it lies in. Null when the system does not tell.
[[nodiscard]] Cf::Owned<CFURLRef> mainBundle();

} // namespace Korvex
