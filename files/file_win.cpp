// Security attributes, template handles and overlapped structures are ignored on purpose: every
// transfer is synchronous.

#include <KxQts/errors.h>
#include <KxQts/files/file.h>
#include <KxQts/winapi/files.h>

#include "files/filehandle.h"
#include "platform/withoutmemory.h"
#include "support/wintext.h"

#include <cerrno>

namespace Error = Korvex::Error;

namespace {

constexpr int wordBits = 32;

template <class Transfer>
BOOL transfer(HANDLE handle, const void* buffer, DWORD count, DWORD* done, Transfer run) {
    errno = 0;
    QFile* file = Korvex::fileBehind(handle);
    if (!file || !file->isOpen() || count == 0 || !buffer) {
        errno = Error::InvalidArgument;
        return FALSE;
    }
    return Korvex::withoutMemory(FALSE, [&] {
        const qint64 transferred = run(*file);
        errno = transferred < 0 ? Error::TransferFailed : 0;
        if (transferred < 0)
            return FALSE;
        if (done)
            *done = static_cast<DWORD>(transferred);
        return TRUE;
    });
}

DWORD lowWord(long long value) {
    return static_cast<DWORD>(value);
}

DWORD highWord(long long value) {
    return static_cast<DWORD>(static_cast<unsigned long long>(value) >> wordBits);
}

} // namespace

HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                   LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                   DWORD dwFlagsAndAttributes, HANDLE hTemplateFile) {
    return Korvex::withoutMemory(nullptr, [&] {
        return createFile(Korvex::windowsText(lpFileName), dwDesiredAccess, dwShareMode,
                          lpSecurityAttributes, dwCreationDisposition, dwFlagsAndAttributes,
                          hTemplateFile);
    });
}

HANDLE CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                   LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                   DWORD dwFlagsAndAttributes, HANDLE hTemplateFile) {
    return Korvex::withoutMemory(nullptr, [&] {
        return createFile(Korvex::windowsText(lpFileName), dwDesiredAccess, dwShareMode,
                          lpSecurityAttributes, dwCreationDisposition, dwFlagsAndAttributes,
                          hTemplateFile);
    });
}

BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
              LPDWORD lpNumberOfBytesRead, LPOVERLAPPED) {
    return transfer(hFile, lpBuffer, nNumberOfBytesToRead, lpNumberOfBytesRead, [&](QFile& file) {
        return Korvex::readFrom(file, static_cast<char*>(lpBuffer), nNumberOfBytesToRead);
    });
}

BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
               LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED) {
    return transfer(
        hFile, lpBuffer, nNumberOfBytesToWrite, lpNumberOfBytesWritten, [&](QFile& file) {
            return file.isWritable()
                       ? file.write(static_cast<const char*>(lpBuffer), nNumberOfBytesToWrite)
                       : -1;
        });
}

BOOL SetFilePointerEx(HANDLE hFile, LARGE_INTEGER liDistanceToMove, LARGE_INTEGER* lpNewFilePointer,
                      DWORD dwMoveMethod) {
    long long position = 0;
    if (!setFilePointer(hFile, liDistanceToMove.QuadPart, &position, dwMoveMethod)) {
        errno = -1;
        return FALSE;
    }
    if (lpNewFilePointer)
        lpNewFilePointer->QuadPart = position;
    return TRUE;
}

DWORD SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
                     DWORD dwMoveMethod) {
    auto distance = static_cast<unsigned long long>(lDistanceToMove);
    // Added to the signed low word, not put in front of it: callers rely on the sum, which wraps.
    if (lpDistanceToMoveHigh)
        distance += static_cast<unsigned long long>(*lpDistanceToMoveHigh) << wordBits;
    long long position = 0;
    if (!setFilePointer(hFile, static_cast<long long>(distance), &position, dwMoveMethod))
        return INVALID_SET_FILE_POINTER;
    if (lpDistanceToMoveHigh)
        *lpDistanceToMoveHigh = static_cast<LONG>(highWord(position));
    return lowWord(position);
}

BOOL GetFileSizeEx(HANDLE hFile, LARGE_INTEGER* lpFileSize) {
    const QFile* file = Korvex::fileBehind(hFile);
    if (!file || !lpFileSize)
        return FALSE;
    const int error = errno;
    lpFileSize->QuadPart = file->size();
    errno = error;
    return TRUE;
}

DWORD GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh) {
    const QFile* file = Korvex::fileBehind(hFile);
    const int error = errno;
    const long long size = file ? file->size() : 0;
    errno = error;
    if (lpFileSizeHigh)
        *lpFileSizeHigh = highWord(size);
    return lowWord(size);
}

BOOL FlushFileBuffers(HANDLE hFile) {
    QFile* file = Korvex::fileBehind(hFile);
    if (!file) {
        errno = Error::InvalidArgument;
        return FALSE;
    }
    errno = 0;
    return Korvex::withoutMemory(FALSE, [&] { return file->flush() ? TRUE : FALSE; });
}
