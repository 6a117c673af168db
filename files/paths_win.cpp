// The buffers hold a text when these are called and hold the same one afterwards, so neither is
// looked at.

#include <KxQts/files/paths.h>
#include <KxQts/winapi/paths.h>

#include "platform/withoutmemory.h"
#include "support/wintext.h"

DWORD GetShortPathNameA(LPCSTR longPath, LPSTR, DWORD size) {
    return Korvex::keepingErrorNumber(0, [&] {
        QString unchanged;
        return getShortPathname(Korvex::windowsText(longPath), unchanged, size);
    });
}

DWORD GetShortPathNameW(LPCWSTR longPath, LPWSTR, DWORD size) {
    return Korvex::keepingErrorNumber(0, [&] {
        QString unchanged;
        return getShortPathname(Korvex::windowsText(longPath), unchanged, size);
    });
}
