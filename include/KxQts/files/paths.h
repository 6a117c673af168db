/// \file
/// Putting paths together and taking them apart, in Qt's types. Paths are written with `/`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/paths.h>

#include <QString>

/// Puts a path together. A separator (`/`, and `.` in front of \a ext) is added where a part that
/// is not empty follows on one that does not end with it and does not begin with it itself; so
/// **also at the very start**: of nothing but the folder "usr" the path is "/usr".
///
/// \param path Receives the path. With an empty \a drive **it keeps its contents** and the other
/// parts are put behind it: clear it first for a fresh path.
/// \return \a path; it is empty when there was no memory for it.
KXQTS_EXPORT QString& makePath(QString& path, const QString& drive, const QString& dir,
                               const QString& fname, const QString& ext);

/// Takes a path apart. Nothing of it needs to exist. Without memory all parts are empty.
///
/// \param drive Receives the mount point of the volume that holds the path, or of its nearest
/// ancestor that exists; empty when that is no volume. It is cut from the path if that begins with
/// it; with "/" the slash at the beginning is gone from \a dir.
/// \param dir Receives what stands before the last slash, without it; empty for a path right below
/// the root.
/// \param fname Receives what follows on that.
/// \param ext Receives what follows on the last dot **anywhere in the path**, a folder's included.
KXQTS_EXPORT void splitPath(const QString& path, QString& drive, QString& dir, QString& fname,
                            QString& ext);

/// There are no short names here. \return 0 when \a longPath does not exist, else the length of
/// that path with its last component once more behind it, or \a maxLength if that is less.
/// \param shortPath Is not written.
KXQTS_EXPORT unsigned int getShortPathname(const QString& longPath, QString& shortPath,
                                           unsigned int maxLength);
