/// \file
/// Searching a folder for names.
///
/// A search lists the current folder once and is then walked. It tells that there are matches and
/// how many, never which: the data record is accepted and left as it was. A search handle belongs
/// to one thread.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Accepted by the searching calls and never written. Its texts are wide where `UNICODE` is
/// defined, as on Windows; the calls of either form take either record.
typedef struct _WIN32_FIND_DATA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
#ifdef UNICODE
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14];
#else
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
#endif
} WIN32_FIND_DATA, *PWIN32_FIND_DATA, *LPWIN32_FIND_DATA;

typedef WIN32_FIND_DATA WIN32_FIND_DATAA, *PWIN32_FIND_DATAA, *LPWIN32_FIND_DATAA;
typedef WIN32_FIND_DATA WIN32_FIND_DATAW, *PWIN32_FIND_DATAW, *LPWIN32_FIND_DATAW;

/// Lists the names of the current folder that match a pattern, and stands on the first.
///
/// \param lpFileName A bare name with wildcards: `*`, `?` and classes such as `[a-c]` and `[!x]`.
/// Upper and lower case are the same. `.` and `..` are listed, hidden names, sockets, FIFOs and
/// links that lead nowhere are not. A pattern with a folder in front (`/tmp/` and a star, say)
/// **matches nothing**, since it is compared with bare names.
/// \param lpFindFileData Ignored.
/// \return The search, owned by the caller until `FindClose`; `errno` is left alone. With no match
/// `INVALID_HANDLE_VALUE` and `errno` 2; without memory the same and `errno` 12.
KXQTS_C_API HANDLE FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATA lpFindFileData);
/// \copydoc FindFirstFileA
KXQTS_C_API HANDLE FindFirstFileW(LPCWSTR lpFileName, LPWIN32_FIND_DATA lpFindFileData);

/// Steps to the next name, whether or not the call succeeds.
///
/// \param lpFindFileData Ignored.
/// \return `TRUE` when there is a further name and something of that name exists in the folder that
/// is the current one **now**; `errno` is left alone. `FALSE` with `errno` 2 at the end of the
/// list, for a name that is gone (the next call goes on behind it), and for what is no open search.
KXQTS_C_API BOOL FindNextFile(HANDLE hFindFile, LPWIN32_FIND_DATA lpFindFileData);

/// Ends a search. Only this call does: `CloseHandle` refuses searches.
/// \return `TRUE`, with `errno` left alone; `FALSE` with `errno` 6 for what is no open search.
KXQTS_C_API BOOL FindClose(HANDLE hFindFile);
