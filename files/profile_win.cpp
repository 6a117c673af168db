#include <KxQts/files/profile.h>
#include <KxQts/support/text.h>
#include <KxQts/winapi/profiles.h>

#include <QByteArray>

#include <algorithm>
#include <string>

namespace {

/// How much of a text goes where; the three shapes that a result that does not fit can have.
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

DWORD store(const WCString& text, char* buffer, const Room& room) {
    const DWORD length = text.size - 1;
    if (room.fits(length)) {
        qstrcpy(buffer, text);
        return length;
    }
    qstrncpy(buffer, text, room.truncated());
    if (room.list)
        endList(buffer, room.size);
    else if (room.size > 0)
        buffer[room.size - 1] = 0;
    return room.truncated();
}

DWORD store(const std::wstring& text, wchar_t* buffer, const Room& room) {
    const auto length = static_cast<DWORD>(text.size());
    const DWORD stored = room.fits(length) ? length : room.truncated();
    std::copy_n(text.begin(), stored, buffer); // never a terminator: callers go by the count
    if (!room.fits(length) && room.list)
        endList(buffer, room.size);
    return stored;
}

QString fromWide(LPCWSTR text) {
    return text ? QString::fromWCharArray(text) : QString();
}

} // namespace

DWORD GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                               LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName) {
    QString result;
    getPrivateProfileString(QString(), QString::fromLatin1(lpAppName),
                            QString::fromLatin1(lpKeyName), QString::fromLatin1(lpDefault), result,
                            QString::fromLatin1(lpFileName));
    if (result.isEmpty() || !lpReturnedString)
        return 0;
    return store(WCString(result), lpReturnedString, {nSize, !lpAppName || !lpKeyName});
}

DWORD GetPrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpDefault,
                               LPWSTR lpReturnedString, DWORD nSize, LPCWSTR lpFileName) {
    QString result;
    getPrivateProfileString(QString(), fromWide(lpAppName), fromWide(lpKeyName),
                            fromWide(lpDefault), result, fromWide(lpFileName));
    if (result.isEmpty() || !lpReturnedString)
        return 0;
    return store(result.toStdWString(), lpReturnedString, {nSize, !lpAppName || !lpKeyName});
}

BOOL WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                LPCSTR lpFileName) {
    return writePrivateProfileString(QString(), QString::fromLatin1(lpAppName),
                                     QString::fromLatin1(lpKeyName), QString::fromLatin1(lpString),
                                     QString::fromLatin1(lpFileName))
               ? TRUE
               : FALSE;
}

BOOL WritePrivateProfileStringW(LPCWSTR lpAppName, LPCWSTR lpKeyName, LPCWSTR lpString,
                                LPCWSTR lpFileName) {
    return writePrivateProfileString(QString(), fromWide(lpAppName), fromWide(lpKeyName),
                                     fromWide(lpString), fromWide(lpFileName))
               ? TRUE
               : FALSE;
}
