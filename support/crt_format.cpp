#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

namespace Error = Korvex::Error;

namespace {

/// Texts up to here need no memory.
constexpr size_t usualSize = 1024;

constexpr size_t unlimited = SIZE_MAX;

/// Composes the first \a limit − 1 characters of a text whose length is known by now.
bool composeLong(char* dst, size_t limit, const char* format, va_list args) {
    const std::unique_ptr<char[]> text(new (std::nothrow) char[limit]);
    if (!text || std::vsnprintf(text.get(), limit, format, args) < 0)
        return false;
    std::strcpy(dst, text.get());
    return true;
}

/// Composes a text away from its destination, since arguments may lie there and a text that does
/// not fit must leave no trace. The whole text must fit into \a size; \a limit says how much of it
/// is kept, terminator included.
bool compose(char* dst, size_t size, size_t limit, const char* format, va_list args) {
    std::array<char, usualSize> text;
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(text.data(), std::min(limit, text.size()), format, args);
    bool done = length >= 0 && static_cast<size_t>(length) < size;
    if (done) {
        const size_t kept = std::min(limit, static_cast<size_t>(length) + 1);
        if (kept > text.size())
            done = composeLong(dst, kept, format, again);
        else
            std::strcpy(dst, text.data());
    }
    va_end(again);
    return done;
}

int print(char* dst, size_t size, size_t limit, const char* format, va_list args) {
    errno = Error::InvalidArgument;
    const bool done =
        dst && size > 0 && limit > 0 && format && compose(dst, size, limit, format, args);
    errno = done ? Error::None : Error::InvalidArgument;
    return done ? 0 : -1;
}

} // namespace

int sprintf_s(char* dst, size_t size, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = print(dst, size, unlimited, format, args);
    va_end(args);
    return result;
}

int _snprintf_s(char* dst, size_t size, size_t count, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = print(dst, size, count, format, args);
    va_end(args);
    return result;
}
