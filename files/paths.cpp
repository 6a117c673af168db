#include <KxQts/files/paths.h>

#include <KxQts/disk/diskobjects.h>
#include <KxQts/errors.h>

#include "platform/diskarbiter.h"
#include "platform/scopes.h"

#include <QFileInfo>

#include <new>

namespace {

void append(QString& path, const QString& part, QChar separator) {
    if (part.isEmpty())
        return;
    if (!path.endsWith(separator) && !part.startsWith(separator))
        path += separator;
    path += part;
}

/// The mount point of the volume that holds a path, in \a drive. \return Whether there is one.
bool findDrive(const QString& path, QString& drive) {
    constexpr int mountPathProperty = 30;
    KX_DEV_VOL_UNION id{};
    if (convertPathToPartialDvID(path, id) != Korvex::Error::None)
        return false;
    const Korvex::Reference<Korvex::WDiskProps> props(Korvex::createFromDvID(id));
    return props && props->getQStringProperty(mountPathProperty, drive) == Korvex::Error::None;
}

/// Cuts a text at the last of a character, which neither part keeps.
/// \return What follows; nothing happens and \a otherwise is returned when there is none.
QString cutAtLast(QString& text, QChar separator, const QString& otherwise) {
    const qsizetype place = text.lastIndexOf(separator);
    if (place < 0)
        return otherwise;
    QString behind = text.mid(place + 1);
    text.truncate(place);
    return behind;
}

} // namespace

// There is no result to tell of want of memory: the path is then the empty one, which leads
// nowhere, and not a part of what was asked for.
QString& makePath(QString& path, const QString& drive, const QString& dir, const QString& fname,
                  const QString& ext) {
    try {
        if (!drive.isEmpty())
            path = drive;
        append(path, dir, QLatin1Char('/'));
        append(path, fname, QLatin1Char('/'));
        append(path, ext, QLatin1Char('.'));
    } catch (const std::bad_alloc&) {
        path = QString();
    }
    return path;
}

void splitPath(const QString& path, QString& drive, QString& dir, QString& fname,
               QString& ext) try {
    const Korvex::ErrorNumberKept untilDone;
    QString rest = path;
    drive.clear();
    if (findDrive(rest, drive) && rest.startsWith(drive))
        rest.remove(0, drive.size());
    // Of the whole path, not of its last component: a folder's dot splits too.
    ext = cutAtLast(rest, QLatin1Char('.'), QString());
    const bool isName = !rest.contains(QLatin1Char('/'));
    fname = cutAtLast(rest, QLatin1Char('/'), rest);
    dir = isName ? QString() : rest;
} catch (const std::bad_alloc&) {
    // As above: all parts or none.
    drive = dir = fname = ext = QString();
}

unsigned int getShortPathname(const QString& longPath, QString&, unsigned int maxLength) try {
    const Korvex::ErrorNumberKept untilDone;
    const QFileInfo info(longPath);
    if (!info.exists())
        return 0;
    const QString text = info.filePath() + QLatin1Char('/') + info.fileName();
    return static_cast<unsigned int>(text.right(static_cast<int>(maxLength)).size());
} catch (const std::bad_alloc&) {
    return 0;
}
