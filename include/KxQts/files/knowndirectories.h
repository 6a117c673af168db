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
