#pragma once

#include <KxQts/platformtypes.h>

#include <vector>

namespace Korvex {

/// Runs the helper that starts privileged programs, directly or through `pkexec`, and waits until
/// it has started the program or failed to.
/// \param words The program to run and its arguments, without a null at the end.
/// \return 0 when the program runs, or what went wrong.
[[nodiscard]] OSStatus runHelper(std::vector<const char*> words);

} // namespace Korvex
