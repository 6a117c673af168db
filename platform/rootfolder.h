#pragma once

#include <QByteArray>

namespace Korvex {

/// What the environment variable `KXQTS_ROOT` says: the folder that stands for the root of the
/// machine-wide and absolute paths that the library keeps things in, so that tests and users
/// without rights have a world of their own. Empty when it is not set, and in a program with more
/// rights than its user. Looked up once.
[[nodiscard]] const QByteArray& rootFolder();

/// The user's home folder: the environment's `HOME`, or else what the account database says.
/// Looked up once.
[[nodiscard]] const QByteArray& homeFolder();

} // namespace Korvex
