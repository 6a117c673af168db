#pragma once

#include <QString>

namespace Korvex {

/// Whether there is such a program and such a folder to start it in. A start that fails later costs
/// a descriptor that nothing gives back, so this is asked first.
/// \param command A command line. \param workingDirectory Empty for the caller's.
[[nodiscard]] bool isStartable(const QString& command, const QString& workingDirectory);

} // namespace Korvex
