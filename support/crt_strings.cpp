#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include "support/crt_text.h"

#include <cerrno>
#include <string>

namespace Crt = Korvex::Crt;
namespace Error = Korvex::Error;

namespace {

template <class Char>
errno_t append(Char* dst, size_t size, const Char* src) {
    if (!src || !dst)
        return Error::InvalidArgument;
    const size_t present = Crt::lengthWithin(dst, size);
    const size_t added = Crt::lengthWithin(src, size);
    if (added >= size - present)
        return Error::OutOfRange;
    std::char_traits<Char>::move(dst + present, src, added);
    dst[present + added] = Char();
    return Error::None;
}

template <class Char>
errno_t copy(Char* dst, size_t size, const Char* src) {
    if (!src || !dst)
        return Error::InvalidArgument;
    const size_t length = Crt::lengthWithin(src, size);
    if (length >= size)
        return Error::OutOfRange;
    std::char_traits<Char>::move(dst, src, length);
    dst[length] = Char();
    return Error::None;
}

// The whole source must fit, not only the part that is copied; and a copy of as many characters as
// asked for, or more, is not terminated. Callers count on both.
template <class Char>
errno_t copyFirst(Char* dst, size_t size, const Char* src, size_t count) {
    if (!dst || !src || count == 0)
        return Error::InvalidArgument;
    if (count > size || size <= Crt::lengthWithin(src, size))
        return Error::OutOfRange;
    const size_t length = Crt::lengthWithin(src, count);
    std::char_traits<Char>::move(dst, src, length);
    std::char_traits<Char>::assign(dst + length, count - length, Char());
    return Error::None;
}

template <class Char>
Char* makeUpper(Char* text) {
    for (Char* c = text; c && *c; ++c)
        *c = Crt::upperCase(*c);
    return text;
}

// Goes on behind the terminator until one zero more than the size has been met: callers pass
// buffers that hold several texts one behind the other.
template <class Char>
void makeUpperThroughZeros(Char* text, size_t size) {
    for (size_t zeros = 0; zeros <= size; ++text) {
        if (*text)
            *text = Crt::upperCase(*text);
        else
            ++zeros;
    }
}

template <class Char>
errno_t makeUpperChecked(Char* text, size_t size) {
    if (!text)
        return errno = Error::InvalidArgument;
    if (size < SIZE_MAX && Crt::lengthWithin(text, size + 1) > size)
        return errno = Error::OutOfRange;
    makeUpperThroughZeros(text, size);
    return errno = Error::None;
}

} // namespace

errno_t strcat_s(char* dst, size_t size, const char* src) {
    return append(dst, size, src);
}

errno_t wcscat_s(wchar_t* dst, size_t size, const wchar_t* src) {
    return append(dst, size, src);
}

errno_t strcpy_s(char* dst, size_t size, const char* src) {
    return copy(dst, size, src);
}

errno_t wcscpy_s(wchar_t* dst, size_t size, const wchar_t* src) {
    return copy(dst, size, src);
}

errno_t strncpy_s(char* dst, size_t size, const char* src, size_t count) {
    return copyFirst(dst, size, src, count);
}

errno_t wcsncpy_s(wchar_t* dst, size_t size, const wchar_t* src, size_t count) {
    return copyFirst(dst, size, src, count);
}

char* _strupr(char* s) {
    return makeUpper(s);
}

wchar_t* _wcsupr(wchar_t* s) {
    return makeUpper(s);
}

errno_t _strupr_s(char* s, size_t size) {
    return makeUpperChecked(s, size);
}

errno_t _wcsupr_s(wchar_t* s, size_t size) {
    return makeUpperChecked(s, size);
}
