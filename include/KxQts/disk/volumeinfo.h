/// \file
/// The volume queries and message formatting of the Windows interface in Qt's types: not supported.
///
/// Every call returns 0 and writes to no argument; all but \ref initializeHfsPlus set `errno` to
/// 50.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/volumes.h>

#include <QString>

/// See \ref GetVolumeInformationA. \return 0
KXQTS_EXPORT int getVolumeInformation(const QString& rootPath, QString& volumeName,
                                      unsigned int* serialNumber, unsigned int* maxComponentLength,
                                      unsigned int* fileSystemFlags, QString& fileSystemName);

/// See \ref GetDriveTypeA. \return `DRIVE_UNKNOWN`
KXQTS_EXPORT unsigned int getDriveType(const QString& rootPath);

/// See \ref GetDiskFreeSpaceA. \return 0
KXQTS_EXPORT int getDiskFreeSpace(const QString& rootPath, unsigned int* sectorsPerCluster,
                                  unsigned int* bytesPerSector, unsigned int* freeClusters,
                                  unsigned int* totalClusters);

/// See \ref FormatMessageA. \return 0
KXQTS_EXPORT unsigned int formatMessage(unsigned int flags, const void* source,
                                        unsigned int messageId, unsigned int languageId,
                                        QString& text, va_list* arguments);

/// Makes no file system, and says so nowhere but in its result. All arguments are ignored.
/// \return 0; `errno` is left alone.
KXQTS_EXPORT int initializeHfsPlus(const QString& device, const QString& name,
                                   const QString* options);
