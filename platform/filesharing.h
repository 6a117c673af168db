#pragma once

namespace Korvex {

/// Opens a file and, with \a shared, takes a shared advisory lock on it before returning.
///
/// The lock is waited for without limit; it is released with the last descriptor of this opening.
/// \param path Bytes as the system takes them.
/// \param flags Those of `open`; the descriptor is closed when another program is run.
/// \return A descriptor that the caller owns; −1 with `errno` as left by the system, and then
/// nothing stays open. A cancellation point.
[[nodiscard]] int openShared(const char* path, int flags, bool shared);

} // namespace Korvex
