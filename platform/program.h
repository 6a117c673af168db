#pragma once

namespace Korvex {

/// Whether a file is a program that the system would start for the calling user, as far as that can
/// be told without starting it: one that may be executed, in a format that the system knows, and
/// for a script with such an interpreter. `errno` is not part of the result.
[[nodiscard]] bool isRunnable(const char* path);

} // namespace Korvex
