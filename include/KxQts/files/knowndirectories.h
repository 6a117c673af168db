/// \file
/// The directories that stand in for those of Windows, in Qt's types.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/knowndirectories.h>

#include <QString>

/// Sets \a path to the system directory, "/usr/local/lib/Korvex". \return True.
KXQTS_EXPORT bool getSystemDirectory(QString& path);

/// Sets \a path to the Windows directory, "/Library/Preferences". \return True.
KXQTS_EXPORT bool getWindowsDirectory(QString& path);

/// Sets \a path to the directory for temporary files, "/tmp". \return True.
KXQTS_EXPORT bool getTempPath(QString& path);

/// Sets \a path to the folder that the running program's bundle lies in: what is "NAME.app", or
/// else the folder of the program itself, without its last component.
///
/// Like all about the application, the text is that of the path in the Mac Roman encoding, byte by
/// byte: exact for ASCII only.
/// \return False, with \a path left alone, when the bundle's path has more than 259 characters or
/// cannot be told.
KXQTS_EXPORT bool getApplicationDirectory(QString& path);

/// The same as bytes. \param buffer Must have room for 260. \param length Receives the length.
KXQTS_EXPORT bool getApplicationDirectory(char* buffer, unsigned long* length);

/// Sets \a path to the path of the running program's bundle itself.
KXQTS_EXPORT bool getApplicationFullPath(QString& path);

namespace Korvex {

/// The path of the file that this library was loaded from, valid until the process ends; null when
/// it is linked into the program itself.
KXQTS_EXPORT const char* getModulePath();

} // namespace Korvex
