#pragma once

#include "command.h"

#include <string>

namespace Kx {

/// The text of `kx --help`.
[[nodiscard]] std::string generalHelp();

/// The text of `kx COMMAND --help`.
[[nodiscard]] std::string helpFor(const Command& command);

/// The words that may stand where the last of \a words stands, one a line, for the shell.
[[nodiscard]] std::string completionsFor(std::span<const std::string> words);

} // namespace Kx
