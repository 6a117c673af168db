#include <KxQts/files/find.h>

#include "files/search.h"

#include <KxQts/errors.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>
#include <vector>

namespace Error = Korvex::Error;

namespace {

struct KeyedName {
    QString key;
    QString name;
};

/// Sorts as a folder's listing does by default, at a fraction of its cost: in large folders most of
/// the time of a listing goes into sorting.
QStringList inListingOrder(const QStringList& names) {
    std::vector<KeyedName> keyed;
    keyed.reserve(static_cast<std::size_t>(names.size()));
    for (const QString& name : names)
        keyed.push_back({name.toLower(), name});
    std::sort(keyed.begin(), keyed.end(),
              [](const KeyedName& one, const KeyedName& other) { return one.key < other.key; });
    QStringList sorted;
    sorted.reserve(names.size());
    for (KeyedName& next : keyed)
        sorted.append(std::move(next.name));
    return sorted;
}

/// The names are compared with the whole pattern, its folder included, so that callers who search
/// another folder than the current one find nothing.
QStringList namesMatching(const QString& pattern) {
    // A class that is not closed matches nothing, and the listing would complain at every name.
    if (!QRegularExpression::fromWildcard(pattern).isValid())
        return {};
    const QDir folder(QFileInfo(pattern).path());
    QStringList patterns;
    patterns.append(pattern); // a list in braces would take it for granted that there is memory
    return inListingOrder(folder.entryList(patterns, QDir::NoFilter, QDir::Unsorted));
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
