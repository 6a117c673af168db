/// \file
/// Making and removing folders, and asking whether there is one, in Qt's types.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#include <QString>

/// See \ref CreateDirectoryA. \param security Ignored.
KXQTS_EXPORT bool createDirectory(const QString& path, _SECURITY_ATTRIBUTES* security);

/// See \ref RemoveDirectoryA.
KXQTS_EXPORT bool removeDirectory(const QString& path);

/// Tells whether something exists at a path, and whether it is a folder. Links are followed.
///
/// \param path Asked for by its Latin-1 form.
/// \param exists Whether there is something; always written.
/// \param isFolder Written only when there is something; may be null.
/// \return 0 when the question could be answered, a missing file included. Otherwise one of the
/// file statuses in `KxQts/errors.h`, with \a exists false: −5000 when a folder on the way may not
/// be searched, −1407 when something on the way is no folder, −1410 for a name that is too long,
/// 100062 for a loop of links, −108 without memory, −36 for any other failure. `errno` is left
/// alone.
KXQTS_EXPORT int isFileOrFolderExist(const QString& path, bool& exists, bool* isFolder);
