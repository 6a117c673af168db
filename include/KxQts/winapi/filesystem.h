/// \file
/// Files and folders by their paths: attributes, times, copying, moving, deleting, folders.
///
/// 8-bit text is Latin-1, wide text is UTF-32; a null path is an empty one, which does not exist.
/// Paths are written with `/` and relative ones start at the current folder. Every call may be made
/// by any thread at any time.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/types.h>
#include <KxQts/winapi/widestream.h>

/// What \ref GetFileAttributesA returns for everything that is not writable and visible.
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu

/// Accepted by \ref GetFileAttributesExA and ignored: there is one record to fill.
typedef enum _GET_FILEEX_INFO_LEVELS {
    GetFileExInfoStandard,
    GetFileExMaxInfoLevel
} GET_FILEEX_INFO_LEVELS;

/// What \ref GetFileAttributesExA tells of a file.
///
/// Times are counted in units of 100 nanoseconds from the beginning of **1970**, in whole seconds;
/// compare them with one another only.
typedef struct _WIN32_FILE_ATTRIBUTE_DATA {
    DWORD dwFileAttributes;    ///< As \ref GetFileAttributesA
    FILETIME ftCreationTime;   ///< Birth, or the last change of status where no birth is kept
    FILETIME ftLastAccessTime; ///< The last read, as far as the file system keeps track
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh; ///< Size in bytes, upper half
    DWORD nFileSizeLow;
} WIN32_FILE_ATTRIBUTE_DATA, *LPWIN32_FILE_ATTRIBUTE_DATA;

/// Tells whether a file or folder is one that anybody may work with.
///
/// \return `FILE_ATTRIBUTE_NORMAL` when it exists, is readable, writable and not hidden and does
/// not belong to root; `INVALID_FILE_ATTRIBUTES` in every other case. `errno` is left alone.
/// \par Differs from Windows
/// There are only these two values: folders are not told from files, and what is read-only, hidden
/// (its name starts with a dot) or root's cannot be told from what is missing.
KXQTS_C_API DWORD GetFileAttributesA(LPCSTR lpFileName);
/// \copydoc GetFileAttributesA
KXQTS_C_API DWORD GetFileAttributesW(LPCWSTR lpFileName);

/// Makes a file or folder writable or read-only.
///
/// \param dwFileAttributes Exactly `FILE_ATTRIBUTE_NORMAL` gives its owner the right to read and
/// write and its group the right to read (mode 0640). Every value without that bit, 0 and
/// `FILE_ATTRIBUTE_READONLY` alike, leaves owner and group the right to read (mode 0440).
/// \return `TRUE`, with `errno` 2. `FALSE` with `errno` 87 when `FILE_ATTRIBUTE_NORMAL` comes with
/// other bits, 2 when there is no such file, or as left by the system.
KXQTS_C_API BOOL SetFileAttributesA(LPCSTR lpFileName, DWORD dwFileAttributes);
/// \copydoc SetFileAttributesA
KXQTS_C_API BOOL SetFileAttributesW(LPCWSTR lpFileName, DWORD dwFileAttributes);

/// Tells times and size of a file that \ref GetFileAttributesA calls normal.
///
/// \param fInfoLevelId Ignored.
/// \param lpFileInformation Receives a `WIN32_FILE_ATTRIBUTE_DATA`, every field of it.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 87 for a null record; `FALSE` with `errno`
/// and the record left alone for what \ref GetFileAttributesA calls invalid.
KXQTS_C_API BOOL GetFileAttributesExA(LPCSTR lpFileName, GET_FILEEX_INFO_LEVELS fInfoLevelId,
                                      LPVOID lpFileInformation);
/// \copydoc GetFileAttributesExA
KXQTS_C_API BOOL GetFileAttributesExW(LPCWSTR lpFileName, GET_FILEEX_INFO_LEVELS fInfoLevelId,
                                      LPVOID lpFileInformation);

/// Copies a file with its permissions.
///
/// A target that exists is replaced once the copy is complete: whatever goes wrong, it is still
/// there.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 2 when the source is missing, 80 when the
/// target exists and \a bFailIfExists is set, 1287 when the copy fails, a folder is given for
/// either, or both are the same file.
KXQTS_C_API BOOL CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists);
/// \copydoc CopyFileA
KXQTS_C_API BOOL CopyFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName, BOOL bFailIfExists);

/// Moves or renames a file or folder. A file may go to another file system, a folder may not.
///
/// A target that exists is replaced (Windows refuses it), unless it is a folder, which is never
/// replaced; a target whose replacement fails is still there. Moving something onto itself does
/// nothing. The source may not end with a slash, and the target only if it names a folder to be.
/// \return `TRUE`, with `errno` 2. `FALSE` with `errno` 2 when the source is missing, else as left
/// by the system.
KXQTS_C_API BOOL MoveFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName);
/// \copydoc MoveFileA
KXQTS_C_API BOOL MoveFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName);

/// Deletes a file, also one that is read-only or open (it is gone when the last user closes it).
///
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 2 when there is none, else as left by the
/// system (a folder is not deleted).
KXQTS_C_API BOOL DeleteFileA(LPCSTR lpFileName);
/// \copydoc DeleteFileA
KXQTS_C_API BOOL DeleteFileW(LPCWSTR lpFileName);

/// Makes a folder in a folder that exists.
///
/// \param lpPathName Its last component is made; one that ends with a slash has none and fails.
/// \param lpSecurityAttributes Ignored.
/// \return `FALSE` with `errno` as left by the system, also when there is something of that name.
/// A success leaves `errno` alone.
KXQTS_C_API BOOL CreateDirectoryA(LPCSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes);
/// \copydoc CreateDirectoryA
KXQTS_C_API BOOL CreateDirectoryW(LPCWSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes);

/// Removes an empty folder. The path may not end with a slash.
/// \return `FALSE` with `errno` as left by the system. A success leaves `errno` alone.
KXQTS_C_API BOOL RemoveDirectoryA(LPCSTR lpPathName);
/// \copydoc RemoveDirectoryA
KXQTS_C_API BOOL RemoveDirectoryW(LPCWSTR lpPathName);
