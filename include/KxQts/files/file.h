/// \file
/// File handles in Qt's types. `CreateFileA` and its siblings stand on these functions.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/files.h>

#include <QFile>
#include <QString>

/// Opens the file that a file object was constructed with, see \ref CreateFileA.
///
/// \param file Owned by this call from now on; deleted when it fails. Null fails with `errno` 12.
/// \return The same pointer, which is a file handle now and is closed with `CloseHandle`; null on
/// failure. The file is opened by the Latin-1 form of its name, while whether it exists is asked by
/// the name itself.
KXQTS_EXPORT QFile* createFile(QFile* file, unsigned int access, unsigned int share,
                               _SECURITY_ATTRIBUTES* security, unsigned int disposition,
                               unsigned int flags, void* templateFile);

/// Opens a file by its path, see \ref CreateFileA.
KXQTS_EXPORT QFile* createFile(const QString& path, unsigned int access, unsigned int share,
                               _SECURITY_ATTRIBUTES* security, unsigned int disposition,
                               unsigned int flags, void* templateFile);

/// Moves a file's position.
///
/// \param newPosition Receives the new position, in bytes from the beginning; must not be null.
/// \param method `FILE_BEGIN`, `FILE_CURRENT` or `FILE_END`.
/// \return True with `errno` 0. False with `errno` 22 for a bad handle, another method and a
/// position that cannot be; \a newPosition is left alone then.
KXQTS_EXPORT bool setFilePointer(void* handle, long long distance, long long* newPosition,
                                 unsigned int method);
