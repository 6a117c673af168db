#pragma once

#include <string>

namespace Korvex {

/// The bundle that the running program is: the folder "NAME.app" whose "Contents/MacOS" it lies in,
/// or else the folder that it lies in. The system's bytes; empty when it cannot be told.
[[nodiscard]] std::string mainBundle();

} // namespace Korvex
