// The information level and security attributes are ignored on purpose.

#include <KxQts/files/attributes.h>
#include <KxQts/files/copymove.h>
#include <KxQts/files/directories.h>
#include <KxQts/winapi/filesystem.h>

#include "platform/withoutmemory.h"
#include "support/wintext.h"

using Korvex::windowsText;

DWORD GetFileAttributesA(LPCSTR lpFileName) {
    return Korvex::keepingErrorNumber(INVALID_FILE_ATTRIBUTES,
                                      [&] { return getFileAttributes(windowsText(lpFileName)); });
}

DWORD GetFileAttributesW(LPCWSTR lpFileName) {
    return Korvex::keepingErrorNumber(INVALID_FILE_ATTRIBUTES,
                                      [&] { return getFileAttributes(windowsText(lpFileName)); });
}

BOOL SetFileAttributesA(LPCSTR lpFileName, DWORD dwFileAttributes) {
    return Korvex::withoutMemory(
        FALSE, [&] { return setFileAttributes(windowsText(lpFileName), dwFileAttributes); });
}

BOOL SetFileAttributesW(LPCWSTR lpFileName, DWORD dwFileAttributes) {
    return Korvex::withoutMemory(
        FALSE, [&] { return setFileAttributes(windowsText(lpFileName), dwFileAttributes); });
}

BOOL GetFileAttributesExA(LPCSTR lpFileName, GET_FILEEX_INFO_LEVELS, LPVOID lpFileInformation) {
    return Korvex::withoutMemory(
        FALSE, [&] { return getFileAttributesData(windowsText(lpFileName), lpFileInformation); });
}

BOOL GetFileAttributesExW(LPCWSTR lpFileName, GET_FILEEX_INFO_LEVELS, LPVOID lpFileInformation) {
    return Korvex::withoutMemory(
        FALSE, [&] { return getFileAttributesData(windowsText(lpFileName), lpFileInformation); });
}

BOOL CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists) {
    return Korvex::withoutMemory(FALSE, [&] {
        return copyFile(windowsText(lpExistingFileName), windowsText(lpNewFileName),
                        bFailIfExists != FALSE);
    });
}

BOOL CopyFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName, BOOL bFailIfExists) {
    return Korvex::withoutMemory(FALSE, [&] {
        return copyFile(windowsText(lpExistingFileName), windowsText(lpNewFileName),
                        bFailIfExists != FALSE);
    });
}

BOOL MoveFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName) {
    return Korvex::withoutMemory(FALSE, [&] {
        return moveFile(windowsText(lpExistingFileName), windowsText(lpNewFileName));
    });
}

BOOL MoveFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName) {
    return Korvex::withoutMemory(FALSE, [&] {
        return moveFile(windowsText(lpExistingFileName), windowsText(lpNewFileName));
    });
}

BOOL DeleteFileA(LPCSTR lpFileName) {
    return Korvex::withoutMemory(FALSE, [&] { return deleteFile(windowsText(lpFileName)); });
}

BOOL DeleteFileW(LPCWSTR lpFileName) {
    return Korvex::withoutMemory(FALSE, [&] { return deleteFile(windowsText(lpFileName)); });
}

BOOL CreateDirectoryA(LPCSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes) {
    return Korvex::withoutMemory(
        FALSE, [&] { return createDirectory(windowsText(lpPathName), lpSecurityAttributes); });
}

BOOL CreateDirectoryW(LPCWSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes) {
    return Korvex::withoutMemory(
        FALSE, [&] { return createDirectory(windowsText(lpPathName), lpSecurityAttributes); });
}

BOOL RemoveDirectoryA(LPCSTR lpPathName) {
    return Korvex::withoutMemory(FALSE, [&] { return removeDirectory(windowsText(lpPathName)); });
}

BOOL RemoveDirectoryW(LPCWSTR lpPathName) {
    return Korvex::withoutMemory(FALSE, [&] { return removeDirectory(windowsText(lpPathName)); });
}

int _wremove(const wchar_t* path) {
    return Korvex::withoutMemory(1, [&] { return deleteFile(windowsText(path)) ? 0 : 1; });
}

int _wrename(const wchar_t* oldPath, const wchar_t* newPath) {
    return Korvex::withoutMemory(
        1, [&] { return moveFile(windowsText(oldPath), windowsText(newPath)) ? 0 : 1; });
}
