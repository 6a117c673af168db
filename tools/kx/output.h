#pragma once

#include <cstdio>
#include <string>
#include <string_view>

/// What subcommands write with. Colours are used on a terminal only, and not when the environment
/// has a `NO_COLOR` that is not empty.
namespace Kx {

enum class Style { Plain, Heading, Good, Bad, Dim };

/// Whether a stream takes colours.
[[nodiscard]] bool takesColours(std::FILE* stream);

/// A text in a style, where the stream takes colours; the text itself elsewhere.
[[nodiscard]] std::string styled(std::string_view text, Style style, std::FILE* stream = stdout);

/// Names come from anybody: a text that is safe to show, in one line. Control characters become
/// "\x" and two hexadecimal digits.
[[nodiscard]] std::string printable(std::string_view text);

/// Writes to standard output.
void print(std::string_view text);

/// Writes "kx SUBJECT: text" and a new line to standard error.
void printError(std::string_view subject, std::string_view text);

/// Hands everything printed to the system. \return False when some of it could not be written.
[[nodiscard]] bool flushOutput();

} // namespace Kx
