#pragma once

/// The fixed directories that callers know. They are the same texts wherever the library lies, and
/// none has a separator behind it.
namespace Korvex {

inline constexpr char systemDirectory[] = "/usr/local/lib/Korvex";
inline constexpr char windowsDirectory[] = "/Library/Preferences";
inline constexpr char temporaryDirectory[] = "/tmp";

} // namespace Korvex
