#include <KxQts/files/find.h>

#include "files/search.h"

#include <KxQts/errors.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <new>

namespace Error = Korvex::Error;

namespace {

/// The names are compared with the whole pattern, its folder included, so that callers who search
/// another folder than the current one find nothing.
QStringList namesMatching(const QString& pattern) {
    // A class that is not closed matches nothing, and the listing would complain at every name.
    if (!QRegularExpression::fromWildcard(pattern).isValid())
        return {};
    return QDir(QFileInfo(pattern).path()).entryList({pattern}, QDir::NoFilter, QDir::NoSort);
}

} // namespace

HANDLE findFirstFile(const QString& pattern, _WIN32_FIND_DATA*) {
    const int error = errno;
    try {
        const QStringList names = namesMatching(pattern);
        Korvex::Search* search = names.isEmpty() ? nullptr : Korvex::beginSearch(names);
        if (search) {
            errno = error;
            return search;
        }
        errno = names.isEmpty() ? Error::NotFound : Error::NoMemory;
    } catch (const std::bad_alloc&) {
        errno = Error::NoMemory;
    }
    return INVALID_HANDLE_VALUE;
}
