#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the kernel tells about its devices, in files.
namespace Korvex::Sysfs {

/// The contents of a small file without white space at their end; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> read(const std::string& path);

/// The same as a number; nothing when it is none.
[[nodiscard]] std::optional<unsigned long long> readNumber(const std::string& path);

/// A line "KEY=VALUE" of such contents; empty when there is none.
[[nodiscard]] std::string_view field(std::string_view contents, std::string_view key);

/// A decimal number and nothing else.
[[nodiscard]] std::optional<unsigned long long> number(std::string_view text);

/// The last component of what a link leads to; empty when it is none.
[[nodiscard]] std::string linkName(const std::string& path);

/// The names in a folder, sorted, without those that begin with a dot.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& path);

} // namespace Korvex::Sysfs
