#pragma once

#include <KxQts/winapi/types.h>

#include <QFile>
#include <QString>

namespace Korvex {

/// The tag of file handles, "QFile".
extern const QString fileTag;

/// The file object behind a handle; null when the handle is anything else. The object need not be
/// open.
[[nodiscard]] QFile* fileBehind(HANDLE handle);

/// Reads at a file object's position. \return The count of bytes, or −1, also for one that is not
/// open for reading.
[[nodiscard]] qint64 readFrom(QFile& file, char* buffer, qint64 count);

/// Closes a file handle and frees its file object. \return `TRUE`
BOOL closeFile(HANDLE handle);

} // namespace Korvex
