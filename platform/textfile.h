#pragma once

#include <optional>
#include <string>

namespace Korvex {

/// The whole of a file that the system makes or that is short, such as those of `/proc`.
/// \return Nothing, with `errno`, when it cannot be read.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

} // namespace Korvex
