#pragma once

#include <KxQts/winapi/types.h>

#include <QStringList>

namespace Korvex {

/// What stands behind a search handle: the names that matched, and where the caller is. It belongs
/// to one thread; the functions below may be called by any.
struct Search {
    QStringList names;
    int index = 0;
};

/// Starts a search over these names. \return Null when there is no memory.
[[nodiscard]] Search* beginSearch(const QStringList& names);

/// The search behind a handle; null for everything that is no open search. Nothing is read through
/// the handle before it is known.
[[nodiscard]] Search* searchBehind(HANDLE handle);

/// Frees the search behind a handle. \return False for everything that is no open search.
bool endSearch(HANDLE handle);

} // namespace Korvex
