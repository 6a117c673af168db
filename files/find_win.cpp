// The data record is ignored on purpose: callers get the fact of a match, never its name.

#include <KxQts/errors.h>
#include <KxQts/files/find.h>
#include <KxQts/winapi/find.h>

#include "files/search.h"
#include "platform/withoutmemory.h"
#include "support/wintext.h"

#include <QFile>

#include <cerrno>
#include <limits>

namespace Error = Korvex::Error;

namespace {

/// Steps on whether or not there is anything; every call counts.
/// \return Whether something of the next name exists in the current folder.
bool stepToNext(Korvex::Search& search) {
    if (search.index < std::numeric_limits<int>::max())
        ++search.index;
    return search.index < search.names.size() && QFile::exists(search.names.at(search.index));
}

} // namespace

HANDLE FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATA lpFindFileData) {
    return Korvex::withoutMemory(INVALID_HANDLE_VALUE, [&] {
        return findFirstFile(Korvex::windowsText(lpFileName), lpFindFileData);
    });
}

HANDLE FindFirstFileW(LPCWSTR lpFileName, LPWIN32_FIND_DATA lpFindFileData) {
    return Korvex::withoutMemory(INVALID_HANDLE_VALUE, [&] {
        return findFirstFile(Korvex::windowsText(lpFileName), lpFindFileData);
    });
}

BOOL FindNextFile(HANDLE hFindFile, LPWIN32_FIND_DATA) {
    const int error = errno;
    Korvex::Search* search = Korvex::searchBehind(hFindFile);
    return Korvex::withoutMemory(FALSE, [&] {
        const bool found = search && stepToNext(*search);
        errno = found ? error : Error::NotFound;
        return found ? TRUE : FALSE;
    });
}

BOOL FindClose(HANDLE hFindFile) {
    if (Korvex::endSearch(hFindFile))
        return TRUE;
    errno = Error::InvalidHandle;
    return FALSE;
}
