#pragma once

#include <string>
#include <vector>

/// Texts that come from outside.
namespace DiskUtil {

/// A text for a line of output: control characters, line ends too, are written as their numbers.
std::string printable(const std::string& text);

/// The byte sequences that a word of the command line may stand for. Programs hand names over in
/// Latin-1 or in UTF-8, and what they hand over in UTF-8 may be the bytes of a path, each of which
/// they took for a character.
std::vector<std::string> readingsOf(const std::string& word);

} // namespace DiskUtil
