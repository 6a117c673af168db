/// \file
/// Profiles: what programs written for Windows keep in INI files.
///
/// No INI file is read or written. A profile is a key of the registry's machine part, named by the
/// last component of the file's path: `a/app.ini` and `b/app.ini` are one profile. Sections are its
/// sub-keys and the keys of a section are text values of those. Names are taken as they are: case
/// counts, and there are no comments or quotes. 8-bit text is Latin-1. `kx reg` shows profiles, and
/// moves them out of INI files and into such.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Reads a value of a profile as text.
///
/// A null string counts as an empty one, save that it tells two ways of truncation apart.
/// \param lpAppName The section; null or empty: the names of all sections are the result, one
/// behind the other **without anything between them**.
/// \param lpKeyName The value's name; null or empty: the names of all entries of the section, in
/// the same form.
/// \param lpDefault The result when there is no such value.
/// \param lpReturnedString Receives the value, without white space at its ends.
/// \param nSize Characters that \a lpReturnedString has room for. **For a list one more** must be
/// there.
/// \return How many characters were stored, the terminator not counted.
///
/// What is stored depends on the length of the text:
/// - No character: nothing, not even a terminator, and the result is 0.
/// - Fewer than \a nSize: the text and a terminator. The result is its length.
/// - More, and a list: nSize − 3 characters and a terminator, and zeros in the places nSize − 1 and
///   nSize, counted from 0. The result is nSize − 2.
/// - More, and a single value: nSize − 2 characters, and zeros in the places nSize − 2 and
///   nSize − 1. The result is nSize − 1.
///
/// A list is told by \a lpAppName or \a lpKeyName being null. A zero byte in the text ends what is
/// copied, not what is counted. Into fewer than 3 characters nothing is written past \a nSize, and
/// the result is never negative. `errno` is left alone.
KXQTS_C_API DWORD GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                           LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName);

/// The same in wide characters, stored in another way:
/// - Fewer than \a nSize: the text, **no terminator**. The result is its length.
/// - More, and a list: nSize − 2 characters, and zeros in the places nSize − 1 and nSize.
///   The result is nSize − 2.
/// - More, and a single value: nSize − 1 characters, **no terminator**. The result is nSize − 1.
KXQTS_C_API DWORD GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpDefault,
                                           LPWSTR lpReturnedString, DWORD nSize,
                                           LPCWSTR lpFileName);

/// Writes a value of a profile.
///
/// \param lpAppName The section; null or empty: the value is kept beside the sections.
/// \param lpKeyName The value's name. Null or empty: the section is removed with all in it; with no
/// section either, nothing is done, and that is a success.
/// \param lpString The text. Null or empty: the value is removed.
/// \return `TRUE`, with `errno` left alone. `FALSE` with `errno` 1010 when there is nothing to
/// remove, and when the store cannot be written.
KXQTS_C_API BOOL WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                            LPCSTR lpFileName);
/// \copydoc WritePrivateProfileStringA
KXQTS_C_API BOOL WritePrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpString,
                                            LPCWSTR lpFileName);
