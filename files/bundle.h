#pragma once

#include <QString>

namespace Korvex {

/// Whether a path names a bundle: a directory with a bundle's suffix (".bundle", ".app",
/// ".framework", ".plugin") that holds `Contents/MacOS/`. `errno` is left alone.
[[nodiscard]] bool isBundle(const QString& path);

/// The path of the executable in a bundle, whether or not the file is there.
[[nodiscard]] QString bundleExecutable(const QString& bundle);

} // namespace Korvex
