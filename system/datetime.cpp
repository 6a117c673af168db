// Locales, flags and formats are ignored on purpose.

#include <KxQts/system/systeminfo.h>

#include "platform/scopes.h"

#include <array>
#include <ctime>

namespace {

using Names = std::array<const char*, 12>;

constexpr Names days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr Names months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

const char* nameOf(const Names& names, int index) {
    const auto at = static_cast<std::size_t>(index);
    return index >= 0 && at < names.size() && names[at] ? names[at] : "???";
}

tm localNow() {
    const time_t now = time(nullptr);
    tm local{};
    tzset(); // localtime_r alone need not notice that the program has changed its time zone
    localtime_r(&now, &local);
    return local;
}

void overwrite(tm& moment, const SYSTEMTIME& time) {
    constexpr int firstYear = 1900;
    moment.tm_year = time.wYear - firstYear;
    moment.tm_mon = time.wMonth - 1;
    moment.tm_mday = time.wDay;
    moment.tm_wday = time.wDayOfWeek;
    moment.tm_hour = time.wHour;
    moment.tm_min = time.wMinute;
    moment.tm_sec = time.wSecond;
}

/// The text of `asctime`, which has one buffer for all threads; here numbers may be out of range.
QString momentText(const tm& moment) {
    constexpr int firstYear = 1900;
    return QString::asprintf("%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", nameOf(days, moment.tm_wday),
                             nameOf(months, moment.tm_mon), moment.tm_mday, moment.tm_hour,
                             moment.tm_min, moment.tm_sec, firstYear + moment.tm_year);
}

} // namespace

bool getDateFormat(LCID, DWORD, const SYSTEMTIME* time, const QString&, QString& out) {
    constexpr qsizetype clockBegins = 11;
    constexpr qsizetype clockLength = 8;
    const Korvex::ErrorNumberKept kept;
    tm moment = localNow();
    if (time)
        overwrite(moment, *time);
    // Callers show this where they want a time, and rely on the date call giving the same.
    out = momentText(moment).mid(clockBegins, clockLength);
    return true;
}

bool getTimeFormat(LCID locale, DWORD flags, const SYSTEMTIME* time, const QString& format,
                   QString& out) {
    return getDateFormat(locale, flags, time, format, out);
}
