/// \file
/// Searching a folder for names, in Qt's types. `FindNextFile` and `FindClose` go on from here.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/find.h>

#include <QString>

/// See \ref FindFirstFileA. \param data Ignored.
KXQTS_EXPORT HANDLE findFirstFile(const QString& pattern, _WIN32_FIND_DATA* data);
