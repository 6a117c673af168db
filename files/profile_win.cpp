#include <KxQts/files/profile.h>
#include <KxQts/support/text.h>
#include <KxQts/winapi/profiles.h>

#include "platform/withoutmemory.h"
#include "support/wintext.h"

#include <algorithm>
#include <string>

using Korvex::windowsText;

namespace {

/// How much of a text there is room for, and what is left of one that does not fit.
struct Room {
    DWORD size;
    bool list; ///< The longer truncation, chosen by null names

    [[nodiscard]] bool fits(DWORD length) const { return length < size; }
    [[nodiscard]] DWORD truncated() const {
        const DWORD lost = list ? 2 : 1;
        return size > lost ? size - lost : 0;
    }
};

/// Zeros behind a truncated list: the last place, and the one behind it.
template <class Character>
void endList(Character* buffer, DWORD size) {
    constexpr DWORD smallestWithPlaceBehind = 3;
    if (size > 0)
        buffer[size - 1] = 0;
    // The place behind the stated size is the caller's to have; too small a buffer has none.
    if (size >= smallestWithPlaceBehind)
        buffer[size] = 0;
}

DWORD store(const QString& text, char* buffer, const Room& room) {
    const WCString narrow(text); // which is wiped: programs keep passwords in profiles, too
    const auto length = static_cast<DWORD>(text.size());
    if (room.fits(length)) {
        qstrcpy(buffer, narrow);
        return length;
    }
    qstrncpy(buffer, narrow, room.truncated());
    if (room.list)
        endList(buffer, room.size);
    else if (room.size > 0)
        buffer[room.size - 1] = 0;
    return room.truncated();
}

DWORD store(const QString& text, wchar_t* buffer, const Room& room) {
    const std::wstring wide = text.toStdWString();
    const auto length = static_cast<DWORD>(wide.size());
    const DWORD stored = room.fits(length) ? length : room.truncated();
    std::copy_n(wide.begin(), stored, buffer); // never a terminator: callers go by the count
    if (!room.fits(length) && room.list)
        endList(buffer, room.size);
    return stored;
}

} // namespace

DWORD GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                               LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName) try {
    QString result;
    getPrivateProfileString(QString(), windowsText(lpAppName), windowsText(lpKeyName),
                            windowsText(lpDefault), result, windowsText(lpFileName));
    if (result.isEmpty() || !lpReturnedString)
        return 0;
    return store(result, lpReturnedString, {nSize, !lpAppName || !lpKeyName});
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return 0;
}

DWORD GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpDefault,
                               LPWSTR lpReturnedString, DWORD nSize, LPCWSTR lpFileName) try {
    QString result;
    getPrivateProfileString(QString(), windowsText(lpAppName), windowsText(lpKeyName),
                            windowsText(lpDefault), result, windowsText(lpFileName));
    if (result.isEmpty() || !lpReturnedString)
        return 0;
    return store(result, lpReturnedString, {nSize, !lpAppName || !lpKeyName});
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return 0;
}

BOOL WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                LPCSTR lpFileName) {
    return Korvex::withoutMemory(FALSE, [&] {
        return writePrivateProfileString(QString(), windowsText(lpAppName), windowsText(lpKeyName),
                                         windowsText(lpString), windowsText(lpFileName))
                   ? TRUE
                   : FALSE;
    });
}

BOOL WritePrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpString,
                                LPCWSTR lpFileName) {
    return Korvex::withoutMemory(FALSE, [&] {
        return writePrivateProfileString(QString(), windowsText(lpAppName), windowsText(lpKeyName),
                                         windowsText(lpString), windowsText(lpFileName))
                   ? TRUE
                   : FALSE;
    });
}
