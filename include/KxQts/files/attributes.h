/// \file
/// Attributes, sizes and times of files in Qt's types.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/filesystem.h>

#include <QString>

/// See \ref GetFileAttributesA. \return `FILE_ATTRIBUTE_NORMAL` or `INVALID_FILE_ATTRIBUTES`.
KXQTS_EXPORT unsigned int getFileAttributes(const QString& path);

/// Not supported; use \ref getFileAttributesData.
/// \return False, always; nothing is written and `errno` is left alone.
KXQTS_EXPORT bool getFileAttributesEx(const QString& path, _GET_FILEEX_INFO_LEVELS level,
                                      void* data);

/// See \ref GetFileAttributesExA.
/// \param data A `WIN32_FILE_ATTRIBUTE_DATA`.
/// \return `TRUE` or `FALSE`
KXQTS_EXPORT int getFileAttributesData(const QString& path, void* data);

/// Turns seconds since 1970 into a file time: units of 100 nanoseconds, counted from **1970** too.
KXQTS_EXPORT long long unixTimeToWinTime(unsigned int seconds);

/// See \ref SetFileAttributesA.
KXQTS_EXPORT bool setFileAttributes(const QString& path, unsigned int attributes);
