#pragma once

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation/url.h>

namespace Korvex {

/// The executable of the running program; null when the system does not tell.
[[nodiscard]] Cf::Owned<CFURLRef> mainExecutable();

/// The folder of the program's bundle: the ".app" folder that the executable lies in as bundles
/// have it, or else the folder that it lies in. Null as above.
[[nodiscard]] Cf::Owned<CFURLRef> mainBundle();

} // namespace Korvex
