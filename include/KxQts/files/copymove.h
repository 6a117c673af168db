/// \file
/// Copying, moving and deleting files in Qt's types.
#pragma once

#include <KxQts/export.h>

#include <QString>

/// See \ref CopyFileA.
KXQTS_EXPORT bool copyFile(const QString& from, const QString& to, bool failIfExists);

/// See \ref MoveFileA.
KXQTS_EXPORT bool moveFile(const QString& from, const QString& to);

/// See \ref DeleteFileA.
KXQTS_EXPORT bool deleteFile(const QString& path);
