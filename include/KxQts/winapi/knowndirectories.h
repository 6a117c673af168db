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
