// None of the buffers is written on purpose, whatever their sizes say.

#include <KxQts/disk/volumeinfo.h>
#include <KxQts/winapi/volumes.h>

#include "support/wintext.h"

using Korvex::windowsText;

namespace {

BOOL volumeInformation(const QString& rootPath, LPDWORD serialNumber, LPDWORD maxComponentLength,
                       LPDWORD fileSystemFlags) {
    QString volumeName;
    QString fileSystemName;
    return getVolumeInformation(rootPath, volumeName, serialNumber, maxComponentLength,
                                fileSystemFlags, fileSystemName);
}

DWORD message(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, va_list* arguments) {
    QString text;
    return formatMessage(flags, source, messageId, languageId, text, arguments);
}

} // namespace

BOOL GetVolumeInformationA(LPCSTR lpRootPathName, LPSTR, DWORD, LPDWORD lpVolumeSerialNumber,
                           LPDWORD lpMaximumComponentLength, LPDWORD lpFileSystemFlags, LPSTR,
                           DWORD) {
    return volumeInformation(windowsText(lpRootPathName), lpVolumeSerialNumber,
                             lpMaximumComponentLength, lpFileSystemFlags);
}

BOOL GetVolumeInformationW(LPCWSTR lpRootPathName, LPWSTR, DWORD, LPDWORD lpVolumeSerialNumber,
                           LPDWORD lpMaximumComponentLength, LPDWORD lpFileSystemFlags, LPWSTR,
                           DWORD) {
    return volumeInformation(windowsText(lpRootPathName), lpVolumeSerialNumber,
                             lpMaximumComponentLength, lpFileSystemFlags);
}

UINT GetDriveTypeA(LPCSTR lpRootPathName) {
    return getDriveType(windowsText(lpRootPathName));
}

UINT GetDriveTypeW(LPCWSTR lpRootPathName) {
    return getDriveType(windowsText(lpRootPathName));
}

BOOL GetDiskFreeSpaceA(LPCSTR lpRootPathName, LPDWORD lpSectorsPerCluster, LPDWORD lpBytesPerSector,
                       LPDWORD lpNumberOfFreeClusters, LPDWORD lpTotalNumberOfClusters) {
    return getDiskFreeSpace(windowsText(lpRootPathName), lpSectorsPerCluster, lpBytesPerSector,
                            lpNumberOfFreeClusters, lpTotalNumberOfClusters);
}

BOOL GetDiskFreeSpaceW(LPCWSTR lpRootPathName, LPDWORD lpSectorsPerCluster,
                       LPDWORD lpBytesPerSector, LPDWORD lpNumberOfFreeClusters,
                       LPDWORD lpTotalNumberOfClusters) {
    return getDiskFreeSpace(windowsText(lpRootPathName), lpSectorsPerCluster, lpBytesPerSector,
                            lpNumberOfFreeClusters, lpTotalNumberOfClusters);
}

DWORD FormatMessageA(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId, DWORD dwLanguageId, LPSTR,
                     DWORD, va_list* Arguments) {
    return message(dwFlags, lpSource, dwMessageId, dwLanguageId, Arguments);
}

DWORD FormatMessageW(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId, DWORD dwLanguageId, LPWSTR,
                     DWORD, va_list* Arguments) {
    return message(dwFlags, lpSource, dwMessageId, dwLanguageId, Arguments);
}
