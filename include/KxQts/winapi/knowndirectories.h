/// \file
/// The directories that stand in for those of Windows. They are fixed texts without a separator
/// behind them; whether they exist is not looked at.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Gives the system directory, "/usr/local/lib/Korvex".
///
/// \param size Characters that \a buffer has room for, the terminator included.
/// \return Characters stored, without the terminator. When they do not fit, the room that is
/// needed, and nothing is written. 0 for a null buffer. `errno` is left alone.
KXQTS_C_API UINT GetSystemDirectoryA(LPSTR buffer, UINT size);
/// \copydoc GetSystemDirectoryA
KXQTS_C_API UINT GetSystemDirectoryW(LPWSTR buffer, UINT size);

/// Gives the Windows directory, "/Library/Preferences". \copydetails GetSystemDirectoryA
KXQTS_C_API UINT GetWindowsDirectoryA(LPSTR buffer, UINT size);
/// \copydoc GetWindowsDirectoryA
KXQTS_C_API UINT GetWindowsDirectoryW(LPWSTR buffer, UINT size);

/// Gives the directory for temporary files, "/tmp". \copydetails GetSystemDirectoryA
/// \par Differs from Windows
/// There is no separator behind the directory. Mind the order of the parameters, which is that of
/// Windows.
KXQTS_C_API DWORD GetTempPathA(DWORD size, LPSTR buffer);
/// \copydoc GetTempPathA
KXQTS_C_API DWORD GetTempPathW(DWORD size, LPWSTR buffer);

/// Gives the folder that the running program's bundle lies in: the "NAME.app" that the program is
/// in, or else the folder of the program itself, without its last component.
///
/// \param size Characters that \a buffer has room for, the terminator included.
/// \return Characters stored, without the terminator, with `errno` 0. 0 with `errno` 234 when they
/// do not fit in \a size, whether or not there is a buffer; 0 with `errno` left alone for a null
/// buffer said to be large enough, and when the bundle's path has more than 259 characters or
/// cannot be told.
/// \par Differs from Windows
/// There is no such call there. The text is in Mac Roman; the wide form converts it in the
/// program's locale and ends where that fails.
KXQTS_C_API DWORD GetApplicationDirectoryA(LPSTR buffer, DWORD size);
/// \copydoc GetApplicationDirectoryA
KXQTS_C_API DWORD GetApplicationDirectoryW(LPWSTR buffer, DWORD size);
