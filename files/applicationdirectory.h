#pragma once

#include <array>

namespace Korvex {

/// As long as callers' own buffers, with the zero at the end.
using ApplicationPath = std::array<char, 260>;

/// The path of the running program's bundle. \return False when there is none or it is too long.
[[nodiscard]] bool readApplicationPath(ApplicationPath& path);

/// The same without its last component.
[[nodiscard]] bool readApplicationDirectory(ApplicationPath& path);

} // namespace Korvex
