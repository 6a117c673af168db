// The information level and security attributes are ignored on purpose.

#include <KxQts/files/attributes.h>
#include <KxQts/files/copymove.h>
#include <KxQts/files/directories.h>
#include <KxQts/winapi/filesystem.h>

#include "files/path.h"

using Korvex::pathFrom;

DWORD GetFileAttributesA(LPCSTR lpFileName) {
    return getFileAttributes(pathFrom(lpFileName));
}

DWORD GetFileAttributesW(LPCWSTR lpFileName) {
    return getFileAttributes(pathFrom(lpFileName));
}

BOOL SetFileAttributesA(LPCSTR lpFileName, DWORD dwFileAttributes) {
    return setFileAttributes(pathFrom(lpFileName), dwFileAttributes);
}

BOOL SetFileAttributesW(LPCWSTR lpFileName, DWORD dwFileAttributes) {
    return setFileAttributes(pathFrom(lpFileName), dwFileAttributes);
}

BOOL GetFileAttributesExA(LPCSTR lpFileName, GET_FILEEX_INFO_LEVELS, LPVOID lpFileInformation) {
    return getFileAttributesData(pathFrom(lpFileName), lpFileInformation);
}

BOOL GetFileAttributesExW(LPCWSTR lpFileName, GET_FILEEX_INFO_LEVELS, LPVOID lpFileInformation) {
    return getFileAttributesData(pathFrom(lpFileName), lpFileInformation);
}

BOOL CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists) {
    return copyFile(pathFrom(lpExistingFileName), pathFrom(lpNewFileName), bFailIfExists != FALSE);
}

BOOL CopyFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName, BOOL bFailIfExists) {
    return copyFile(pathFrom(lpExistingFileName), pathFrom(lpNewFileName), bFailIfExists != FALSE);
}

BOOL MoveFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName) {
    return moveFile(pathFrom(lpExistingFileName), pathFrom(lpNewFileName));
}

BOOL MoveFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName) {
    return moveFile(pathFrom(lpExistingFileName), pathFrom(lpNewFileName));
}

BOOL DeleteFileA(LPCSTR lpFileName) {
    return deleteFile(pathFrom(lpFileName));
}

BOOL DeleteFileW(LPCWSTR lpFileName) {
    return deleteFile(pathFrom(lpFileName));
}

BOOL CreateDirectoryA(LPCSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes) {
    return createDirectory(pathFrom(lpPathName), lpSecurityAttributes);
}

BOOL CreateDirectoryW(LPCWSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes) {
    return createDirectory(pathFrom(lpPathName), lpSecurityAttributes);
}

BOOL RemoveDirectoryA(LPCSTR lpPathName) {
    return removeDirectory(pathFrom(lpPathName));
}

BOOL RemoveDirectoryW(LPCWSTR lpPathName) {
    return removeDirectory(pathFrom(lpPathName));
}

int _wremove(const wchar_t* path) {
    return deleteFile(pathFrom(path)) ? 0 : 1;
}

int _wrename(const wchar_t* oldPath, const wchar_t* newPath) {
    return moveFile(pathFrom(oldPath), pathFrom(newPath)) ? 0 : 1;
}
