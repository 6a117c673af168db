#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>
#include <KxQts/winapi/types.h>

#include <cerrno>
#include <ctime>

namespace Error = Korvex::Error;

namespace {

/// Characters of a date or a time of day, without terminator.
constexpr int textLength = 8;

constexpr int firstYear = 1900; // of struct tm
constexpr int yearsOfTwoDigits = 100;

tm localNow() {
    const int error = errno;
    const time_t now = std::time(nullptr);
    tm fields{};
    localtime_r(&now, &fields);
    errno = error;
    return fields;
}

/// Writes three numbers of two digits each.
template <class Char>
Char* write(Char* dst, const int (&numbers)[3], char separator) {
    constexpr int decimal = 10;
    Char* end = dst;
    for (const int number : numbers) {
        if (end != dst)
            *end++ = static_cast<Char>(separator);
        *end++ = static_cast<Char>('0' + number / decimal);
        *end++ = static_cast<Char>('0' + number % decimal);
    }
    *end = Char();
    return dst;
}

template <class Char>
Char* writeDate(Char* dst) {
    if (!dst)
        return nullptr;
    const tm now = localNow();
    const int year = (now.tm_year + firstYear) % yearsOfTwoDigits;
    return write(dst, {now.tm_mon + 1, now.tm_mday, year}, '/');
}

template <class Char>
Char* writeTime(Char* dst) {
    if (!dst)
        return nullptr;
    const tm now = localNow();
    return write(dst, {now.tm_hour, now.tm_min, now.tm_sec}, ':');
}

// A success is told by the length of the text, not by 0.
template <class Char>
errno_t checked(Char* (*writeTo)(Char*), Char* dst, size_t size) {
    errno = Error::InvalidArgument;
    if (!dst || size <= textLength)
        return -1;
    writeTo(dst);
    errno = Error::None;
    return textLength;
}

} // namespace

void GetLocalTime(LPSYSTEMTIME time) {
    if (!time)
        return;
    const tm now = localNow();
    time->wYear = static_cast<WORD>(now.tm_year + firstYear);
    time->wMonth = static_cast<WORD>(now.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(now.tm_wday);
    time->wDay = static_cast<WORD>(now.tm_mday);
    time->wHour = static_cast<WORD>(now.tm_hour);
    time->wMinute = static_cast<WORD>(now.tm_min);
    time->wSecond = static_cast<WORD>(now.tm_sec);
    time->wMilliseconds = 0;
}

char* _strdate(char* dst) {
    return writeDate(dst);
}

wchar_t* _wstrdate(wchar_t* dst) {
    return writeDate(dst);
}

char* _strtime(char* dst) {
    return writeTime(dst);
}

wchar_t* _wstrtime(wchar_t* dst) {
    return writeTime(dst);
}

errno_t _strdate_s(char* dst, size_t size) {
    return checked(writeDate<char>, dst, size);
}

errno_t _wstrdate_s(wchar_t* dst, size_t size) {
    return checked(writeDate<wchar_t>, dst, size);
}

errno_t _strtime_s(char* dst, size_t size) {
    return checked(writeTime<char>, dst, size);
}

errno_t _wstrtime_s(wchar_t* dst, size_t size) {
    return checked(writeTime<wchar_t>, dst, size);
}
