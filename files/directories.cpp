#include <KxQts/files/directories.h>

#include "platform/withoutmemory.h"

#include <KxQts/errors.h>

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>

namespace Error = Korvex::Error;

namespace {

/// What a failed question for a file means to the caller.
int statusOf(int error) {
    switch (error) {
    case ENOENT:
        return Error::None;
    case EACCES:
        return Error::StatusNoRight;
    case ENOTDIR:
        return Error::StatusNoFolder;
    case ENAMETOOLONG:
        return Error::StatusNameTooLong;
    case ELOOP:
        return Error::StatusLinkLoop;
    case ENOMEM:
        return Error::StatusNoMemory;
    default:
        return Error::StatusReadFailed;
    }
}

/// Does something with the last component of a path in the folder that holds it. A path that ends
/// with a slash has no last component.
template <class Operation>
bool inParentOf(const QString& path, Operation operation) {
    const QFileInfo folder(path);
    const QString name = folder.fileName();
    if (name.isEmpty()) {
        errno = Error::NotFound;
        return false;
    }
    return operation(folder.dir(), name);
}

} // namespace

bool createDirectory(const QString& path, _SECURITY_ATTRIBUTES*) {
    return Korvex::withoutMemory(false, [&] {
        return inParentOf(
            path, [](const QDir& parent, const QString& name) { return parent.mkdir(name); });
    });
}

bool removeDirectory(const QString& path) {
    return Korvex::withoutMemory(false, [&] {
        return inParentOf(
            path, [](const QDir& parent, const QString& name) { return parent.rmdir(name); });
    });
}

int isFileOrFolderExist(const QString& path, bool& exists, bool* isFolder) try {
    const int error = errno;
    struct stat found {};
    exists = stat(path.toLatin1().constData(), &found) == 0;
    const int status = exists ? Error::None : statusOf(errno);
    errno = error;
    if (exists && isFolder)
        *isFolder = S_ISDIR(found.st_mode);
    return status;
} catch (const std::bad_alloc&) {
    exists = false;
    return Error::StatusNoMemory;
}
