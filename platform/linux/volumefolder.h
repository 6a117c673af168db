#pragma once

#include <string>

/// The folders that volumes are mounted in when nobody says where: "/Volumes/NAME", behind the
/// prefix that `KXQTS_ROOT` sets for processes without special rights.
namespace Korvex::VolumeFolder {

/// The options that volumes are mounted with there: a medium that nobody has chosen a place for is
/// nobody's whose programs and devices are trusted.
inline constexpr char mountOptions[] = "nosuid,nodev";

/// Makes an empty folder of a name, or of that name and a number when there is one already.
/// \return Its path; empty with `errno` when that fails.
[[nodiscard]] std::string make(const std::string& name);

/// Removes a folder that was made so, if it is empty. Does nothing to others.
void remove(const std::string& path);

} // namespace Korvex::VolumeFolder
