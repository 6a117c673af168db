#pragma once

#include <QString>

namespace Korvex {

/// Where the engine's log lies, its bytes as Latin-1: in the folder of an installation in progress
/// while the system was started from installation media, else beside the library, under its name
/// with ".log" in place of everything from the last dot. Empty when the library's path has no dot
/// or is not known, as when it is linked into the main program.
[[nodiscard]] QString engineLogPath();

/// The same with another folder in place of the one that installation media have.
[[nodiscard]] QString engineLogPath(const QString& installationFolder);

} // namespace Korvex
