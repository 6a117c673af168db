// Locales, flags and formats are ignored on purpose.

#include <KxQts/errors.h>
#include <KxQts/system/systeminfo.h>
#include <KxQts/winapi/errors.h>

#include "support/wintext.h"

#include <cerrno>
#include <cstring>

using Korvex::windowsText;

namespace {

using Format = bool(LCID, DWORD, const SYSTEMTIME*, const QString&, QString&);

void copy(const QString& from, char* to) {
    std::strncpy(to, from.toLatin1().constData(), static_cast<std::size_t>(from.size()));
}

void copy(const QString& from, wchar_t* to) {
    from.toWCharArray(to);
}

/// Dates and times are given by the same steps in either kind of text.
template <class Character>
int give(Format formatTime, LCID locale, DWORD flags, const SYSTEMTIME* time,
         const Character* format, Character* out, int size) {
    if (size < 0 || (size != 0 && !out)) {
        errno = Korvex::Error::InvalidParameter;
        return 0;
    }
    QString result;
    formatTime(locale, flags, time, windowsText(format), result);
    const int length = static_cast<int>(result.size());
    if (size > 0 && length >= size) {
        errno = ERROR_MORE_DATA;
        return 0;
    }
    if (size > 0) {
        copy(result, out);
        out[length] = 0;
    }
    errno = Korvex::Error::None;
    return size == 0 ? length + 1 : length;
}

} // namespace

int GetDateFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCSTR lpFormat,
                   LPSTR lpText, int cchText) {
    return give(getDateFormat, Locale, dwFlags, lpTime, lpFormat, lpText, cchText);
}

int GetDateFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCWSTR lpFormat,
                   LPWSTR lpText, int cchText) {
    return give(getDateFormat, Locale, dwFlags, lpTime, lpFormat, lpText, cchText);
}

int GetTimeFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCSTR lpFormat,
                   LPSTR lpText, int cchText) {
    return give(getTimeFormat, Locale, dwFlags, lpTime, lpFormat, lpText, cchText);
}

int GetTimeFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCWSTR lpFormat,
                   LPWSTR lpText, int cchText) {
    return give(getTimeFormat, Locale, dwFlags, lpTime, lpFormat, lpText, cchText);
}
