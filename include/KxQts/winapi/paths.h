/// \file
/// Short paths, which there are none of.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Tells a length; there are no short names here.
///
/// \param longPath A path; Latin-1 in the 8-bit form. Null does not exist.
/// \param shortPath Keeps its contents.
/// \param size Characters.
/// \return 0 when \a longPath does not exist. Else the length of that path with a slash and its
/// last component once more behind it, or \a size if that is less and not above 2^31. `errno` is
/// left alone.
/// \par Differs from Windows
/// Nothing is written, and the length is that of no path.
KXQTS_C_API DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD size);
/// \copydoc GetShortPathNameA
KXQTS_C_API DWORD GetShortPathNameW(LPCWSTR longPath, LPWSTR shortPath, DWORD size);
