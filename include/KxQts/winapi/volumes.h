/// \file
/// Volume queries and message formatting: none of these calls is supported. They exist so that
/// shared sources build and take the way that they have for a failure.
///
/// Every call returns 0 with `errno` 50 and writes to no argument, not to buffers and not to sizes.
/// Any thread may call them. Facts about volumes come from the calls that are the library's own.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#include <stdarg.h>

#define DRIVE_UNKNOWN 0u
#define DRIVE_NO_ROOT_DIR 1u
#define DRIVE_REMOVABLE 2u
#define DRIVE_FIXED 3u
#define DRIVE_REMOTE 4u
#define DRIVE_CDROM 5u
#define DRIVE_RAMDISK 6u

#define FILE_CASE_SENSITIVE_SEARCH 0x00000001u
#define FILE_CASE_PRESERVED_NAMES 0x00000002u
#define FILE_UNICODE_ON_DISK 0x00000004u
#define FILE_PERSISTENT_ACLS 0x00000008u
#define FILE_FILE_COMPRESSION 0x00000010u
#define FILE_VOLUME_QUOTAS 0x00000020u
#define FILE_SUPPORTS_SPARSE_FILES 0x00000040u
#define FILE_SUPPORTS_REPARSE_POINTS 0x00000080u
#define FILE_VOLUME_IS_COMPRESSED 0x00008000u
#define FILE_SUPPORTS_ENCRYPTION 0x00020000u
#define FILE_READ_ONLY_VOLUME 0x00080000u

#define FORMAT_MESSAGE_MAX_WIDTH_MASK 0x000000FFu
#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100u
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200u
#define FORMAT_MESSAGE_FROM_STRING 0x00000400u
#define FORMAT_MESSAGE_FROM_HMODULE 0x00000800u
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000u
#define FORMAT_MESSAGE_ARGUMENT_ARRAY 0x00002000u

/// Not supported. \return `FALSE`, with `errno` 50; nothing is written.
KXQTS_C_API BOOL GetVolumeInformationA(LPCSTR lpRootPathName, LPSTR lpVolumeNameBuffer,
                                       DWORD nVolumeNameSize, LPDWORD lpVolumeSerialNumber,
                                       LPDWORD lpMaximumComponentLength, LPDWORD lpFileSystemFlags,
                                       LPSTR lpFileSystemNameBuffer, DWORD nFileSystemNameSize);
/// \copydoc GetVolumeInformationA
KXQTS_C_API BOOL GetVolumeInformationW(LPCWSTR lpRootPathName, LPWSTR lpVolumeNameBuffer,
                                       DWORD nVolumeNameSize, LPDWORD lpVolumeSerialNumber,
                                       LPDWORD lpMaximumComponentLength, LPDWORD lpFileSystemFlags,
                                       LPWSTR lpFileSystemNameBuffer, DWORD nFileSystemNameSize);

/// Not supported. \return `DRIVE_UNKNOWN`, with `errno` 50.
KXQTS_C_API UINT GetDriveTypeA(LPCSTR lpRootPathName);
/// \copydoc GetDriveTypeA
KXQTS_C_API UINT GetDriveTypeW(LPCWSTR lpRootPathName);

/// Not supported. \return `FALSE`, with `errno` 50; nothing is written.
KXQTS_C_API BOOL GetDiskFreeSpaceA(LPCSTR lpRootPathName, LPDWORD lpSectorsPerCluster,
                                   LPDWORD lpBytesPerSector, LPDWORD lpNumberOfFreeClusters,
                                   LPDWORD lpTotalNumberOfClusters);
/// \copydoc GetDiskFreeSpaceA
KXQTS_C_API BOOL GetDiskFreeSpaceW(LPCWSTR lpRootPathName, LPDWORD lpSectorsPerCluster,
                                   LPDWORD lpBytesPerSector, LPDWORD lpNumberOfFreeClusters,
                                   LPDWORD lpTotalNumberOfClusters);

/// Not supported. \return 0 characters, with `errno` 50; nothing is written or allocated, with
/// `FORMAT_MESSAGE_ALLOCATE_BUFFER` neither.
KXQTS_C_API DWORD FormatMessageA(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId,
                                 DWORD dwLanguageId, LPSTR lpBuffer, DWORD nSize,
                                 va_list* Arguments);
/// \copydoc FormatMessageA
KXQTS_C_API DWORD FormatMessageW(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId,
                                 DWORD dwLanguageId, LPWSTR lpBuffer, DWORD nSize,
                                 va_list* Arguments);
