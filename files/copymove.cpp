#include <KxQts/files/copymove.h>

#include "files/sibling.h"
#include "platform/withoutmemory.h"

#include <KxQts/errors.h>

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>

namespace Error = Korvex::Error;

namespace {

/// A link that leads nowhere is an entry of its folder too.
bool isEntry(const QFileInfo& path) {
    return path.isSymLink() || path.exists();
}

bool isFolder(const QFileInfo& path) {
    return path.isDir() && !path.isSymLink();
}

enum class Relation {
    Different,
    Links, ///< Two names of one file
    Same,  ///< One name, however it is written
};

Relation relationOf(const QFileInfo& one, const QFileInfo& other) {
    struct stat first {};
    struct stat second {};
    if (lstat(QFile::encodeName(one.filePath()).constData(), &first) != 0 ||
        lstat(QFile::encodeName(other.filePath()).constData(), &second) != 0 ||
        first.st_dev != second.st_dev || first.st_ino != second.st_ino)
        return Relation::Different;
    const bool oneName = first.st_nlink == 1 || S_ISDIR(first.st_mode);
    return oneName || Korvex::entryPath(one.filePath()) == Korvex::entryPath(other.filePath())
               ? Relation::Same
               : Relation::Links;
}

/// Whether the source would be gone if the target's entry were removed: that is the source, or one
/// of the links by which it is found.
bool copiesOntoItself(const QFileInfo& source, const QFileInfo& target) {
    constexpr int mostLinks = 40; // as many as the system follows
    QFileInfo link = source;
    for (int i = 0; i < mostLinks && link.isSymLink(); ++i) {
        if (relationOf(link, target) == Relation::Same)
            return true;
        link = QFileInfo(link.symLinkTarget());
    }
    return relationOf(QFileInfo(source.canonicalFilePath()), target) == Relation::Same;
}

/// Leaves the target as it was unless the copy is complete.
bool replaceByCopy(const QFileInfo& source, const QFileInfo& target) {
    if (isFolder(target) || copiesOntoItself(source, target))
        return false;
    const Korvex::TemporarySibling copy(target.filePath());
    return QFile::copy(source.filePath(), copy.path()) &&
           Korvex::renameOver(copy.path(), target.filePath());
}

/// Nobody ever finds the target missing, unless a folder takes the place of a file: the system has
/// no single step for that.
bool moveWithin(const QFileInfo& source, const QFileInfo& target) {
    if (!isFolder(source) || !isEntry(target))
        return Korvex::renameOver(source.filePath(), target.filePath());
    Korvex::SetAside replaced(target.filePath());
    const bool moved = Korvex::renameOver(source.filePath(), target.filePath());
    if (moved)
        (void)replaced.drop();
    return moved;
}

/// Takes a file to another file system. Both files stay as they were unless all of it succeeds;
/// whether the source may be removed is found out before the target is replaced.
bool moveAcross(const QFileInfo& source, const QFileInfo& target) {
    const Korvex::TemporarySibling copy(target.filePath());
    if (!QFile::copy(source.filePath(), copy.path()))
        return false;
    Korvex::SetAside original(source.filePath());
    if (!original.isAside() || !Korvex::renameOver(copy.path(), target.filePath()))
        return false;
    return original.drop();
}

bool moveOnto(const QFileInfo& source, const QFileInfo& target) {
    if (isFolder(target)) {
        errno = EISDIR;
        return false;
    }
    if (moveWithin(source, target))
        return true;
    return errno == EXDEV && !isFolder(source) && moveAcross(source, target);
}

bool move(const QFileInfo& source, const QFileInfo& target) {
    if (source.fileName().isEmpty())
        return false;
    switch (relationOf(source, target)) {
    case Relation::Same:
        return true;
    case Relation::Links: // renaming would leave both
        return QFile::remove(source.filePath());
    case Relation::Different:
        break;
    }
    return moveOnto(source, target);
}

} // namespace

bool copyFile(const QString& from, const QString& to, bool failIfExists) try {
    if (!QFileInfo::exists(from)) {
        errno = Error::NotFound;
        return false;
    }
    const bool replaces = QFileInfo::exists(to);
    if (replaces && failIfExists) {
        errno = Error::FileExists;
        return false;
    }
    const bool copied =
        replaces ? replaceByCopy(QFileInfo(from), QFileInfo(to)) : QFile::copy(from, to);
    errno = copied ? Error::None : Error::CopyFailed;
    return copied;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}

bool moveFile(const QString& from, const QString& to) try {
    const bool exists = QFileInfo::exists(from);
    errno = Error::NotFound;
    if (!exists || !move(QFileInfo(from), QFileInfo(to)))
        return false;
    errno = Error::NotFound; // callers find it after a success too
    return true;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}

bool deleteFile(const QString& path) try {
    if (!QFileInfo::exists(path)) {
        errno = Error::NotFound;
        return false;
    }
    const bool removed = QFile::remove(path);
    if (removed)
        errno = Error::None;
    return removed;
} catch (const std::bad_alloc&) {
    errno = Error::NoMemory;
    return false;
}
