/// \file
/// File handles: opening, reading, writing, positions and sizes.
///
/// All calls are synchronous. A file handle is used by one thread at a time. Reading and writing
/// are buffered by the library: other handles and processes see what was written after
/// `FlushFileBuffers`, `CloseHandle`, or a seek.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define GENERIC_EXECUTE 0x20000000u
#define GENERIC_ALL 0x10000000u

// Rights that are finer than these open for reading, whatever they are.
#define FILE_READ_DATA 0x00000001u
#define FILE_WRITE_DATA 0x00000002u
#define FILE_APPEND_DATA 0x00000004u
#define FILE_READ_ATTRIBUTES 0x00000080u
#define FILE_WRITE_ATTRIBUTES 0x00000100u
#define SYNCHRONIZE 0x00100000u

#define FILE_SHARE_READ 0x00000001u
#define FILE_SHARE_WRITE 0x00000002u
#define FILE_SHARE_DELETE 0x00000004u

#define CREATE_NEW 1u
#define CREATE_ALWAYS 2u
#define OPEN_EXISTING 3u
#define OPEN_ALWAYS 4u
#define TRUNCATE_EXISTING 5u

#define FILE_ATTRIBUTE_READONLY 0x00000001u
#define FILE_ATTRIBUTE_HIDDEN 0x00000002u
#define FILE_ATTRIBUTE_SYSTEM 0x00000004u
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010u
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020u
#define FILE_ATTRIBUTE_DEVICE 0x00000040u
#define FILE_ATTRIBUTE_NORMAL 0x00000080u
#define FILE_ATTRIBUTE_TEMPORARY 0x00000100u
#define FILE_ATTRIBUTE_SPARSE_FILE 0x00000200u
#define FILE_ATTRIBUTE_REPARSE_POINT 0x00000400u
#define FILE_ATTRIBUTE_COMPRESSED 0x00000800u
#define FILE_ATTRIBUTE_OFFLINE 0x00001000u
#define FILE_ATTRIBUTE_NOT_CONTENT_INDEXED 0x00002000u
#define FILE_ATTRIBUTE_ENCRYPTED 0x00004000u

#define FILE_FLAG_WRITE_THROUGH 0x80000000u
#define FILE_FLAG_OVERLAPPED 0x40000000u
#define FILE_FLAG_NO_BUFFERING 0x20000000u
#define FILE_FLAG_RANDOM_ACCESS 0x10000000u
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000u
#define FILE_FLAG_DELETE_ON_CLOSE 0x04000000u
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000u
#define FILE_FLAG_POSIX_SEMANTICS 0x01000000u
#define FILE_FLAG_OPEN_REPARSE_POINT 0x00200000u

#define FILE_BEGIN 0u
#define FILE_CURRENT 1u
#define FILE_END 2u

#define INVALID_FILE_SIZE 0xFFFFFFFFu
#define INVALID_SET_FILE_POINTER 0xFFFFFFFFu

/// Opens a file.
///
/// \param lpFileName The path: 8-bit text is Latin-1, wide text is UTF-32.
/// \param dwDesiredAccess `GENERIC_WRITE` alone opens for writing, together with `GENERIC_READ` for
/// both; everything else opens for reading.
/// \param dwShareMode With `FILE_SHARE_READ` or `FILE_SHARE_WRITE` the call takes a shared advisory
/// lock on the file and waits for it; otherwise no lock is taken, never an exclusive one.
/// \param dwCreationDisposition What is done with a file that exists or does not:
/// | value               | file exists           | file is missing                           |
/// |---------------------|-----------------------|-------------------------------------------|
/// | `CREATE_NEW`        | fails, `errno` 17     | fails, `errno` 2: a file is never created |
/// | `CREATE_ALWAYS`     | opened, contents kept | created                                   |
/// | `OPEN_EXISTING`     | opened                | fails, `errno` 2                          |
/// | `OPEN_ALWAYS`       | opened                | created                                   |
/// | `TRUNCATE_EXISTING` | emptied               | fails, `errno` 2                          |
/// \param dwFlagsAndAttributes `FILE_FLAG_DELETE_ON_CLOSE` is kept in the file object's open mode
/// (bit 0x80) and has no other effect; everything else is ignored.
/// \param lpSecurityAttributes, hTemplateFile Ignored.
/// \return The handle, with `errno` 0, owned by the caller until `CloseHandle`. **Null** on every
/// failure (not `INVALID_HANDLE_VALUE`), with `errno` 17, 2, 22 (no such disposition), 12 (no
/// memory), or as left by `open`; nothing is left open then.
KXQTS_C_API HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                               LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                               DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
                               HANDLE hTemplateFile);
/// \copydoc CreateFileA
KXQTS_C_API HANDLE CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                               LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                               DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
                               HANDLE hTemplateFile);

/// Reads from the file's position on.
///
/// \param nNumberOfBytesToRead Bytes wanted, at least 1: asking for none fails with `errno` 22.
/// \param lpNumberOfBytesRead Receives the count of bytes read; may be null. A short count is a
/// success, and so is 0 at the end of the file. A failure leaves it alone.
/// \param lpOverlapped Ignored.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 22 for what is no open file, no bytes or a
/// null buffer, 5 when the transfer fails.
KXQTS_C_API BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                          LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped);

/// Writes at the file's position. Arguments and results are those of \ref ReadFile.
KXQTS_C_API BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                           LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped);

/// Moves a file's position, which may come to lie behind its end.
///
/// \param lpNewFilePointer Receives the new position, in bytes from the beginning; may be null.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` −1 (no number of the system's) for a bad
/// handle, an unknown method and a position that cannot be.
KXQTS_C_API BOOL SetFilePointerEx(HANDLE hFile, LARGE_INTEGER liDistanceToMove,
                                  LARGE_INTEGER* lpNewFilePointer, DWORD dwMoveMethod);

/// Moves a file's position by a distance given in two words.
///
/// \param lpDistanceToMoveHigh May be null. Its value times 2^32 is **added** to the low word,
/// which counts as signed: with bit 31 of the low word set the distance is 2^32 less than on
/// Windows. Receives the high word of the new position.
/// \return The low word of the new position, with `errno` 0. `INVALID_SET_FILE_POINTER` with `errno`
/// 22 on failure; the high word is left alone then.
KXQTS_C_API DWORD SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
                                 DWORD dwMoveMethod);

/// Tells a file's size in bytes.
/// \return `FALSE` for what is no file and for a null result pointer. `errno` is left alone.
KXQTS_C_API BOOL GetFileSizeEx(HANDLE hFile, LARGE_INTEGER* lpFileSize);

/// Tells a file's size in bytes, in two words.
/// \param lpFileSizeHigh Receives the high word; may be null.
/// \return The low word; 0 in both words for what is no file (not `INVALID_FILE_SIZE`). `errno` is
/// left alone.
KXQTS_C_API DWORD GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);

/// Hands what was written and is still buffered to the system.
/// \return `TRUE` with `errno` 0; `FALSE` when that fails, and with `errno` 22 for what is no file.
KXQTS_C_API BOOL FlushFileBuffers(HANDLE hFile);
