// The wide forms of calls that the system has for 8-bit text only.

#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <strings.h>
#include <unistd.h>

namespace Error = Korvex::Error;

namespace {

/// Bytes of a converted text, terminator included; and characters that are kept of a value.
constexpr size_t textSize = 260;

using Bytes = std::array<char, textSize>;

/// Converts a text by the program's locale.
/// \return Whether all of it was converted and fits; `errno` says what was wrong else.
bool toBytes(Bytes& bytes, const wchar_t* text) {
    if (!text) {
        errno = Error::InvalidArgument;
        return false;
    }
    const size_t length = std::wcstombs(bytes.data(), text, bytes.size());
    if (length == bytes.size())
        errno = ENAMETOOLONG;
    return length < bytes.size();
}

// One for both calls that hand it out, as their callers expect.
wchar_t* sharedText() {
    static std::array<wchar_t, textSize + 1> text;
    return text.data();
}

/// \return The shared text; null when the bytes cannot be converted.
wchar_t* toSharedText(const char* bytes) {
    wchar_t* text = sharedText();
    const size_t length = std::mbstowcs(text, bytes, textSize);
    text[length <= textSize ? length : 0] = 0;
    return length <= textSize ? text : nullptr;
}

} // namespace

int _wcsicmp(const wchar_t* a, const wchar_t* b) {
    if (!a || !b) {
        errno = Error::InvalidArgument;
        return INT_MAX;
    }
    const int error = errno;
    Bytes first;
    Bytes second;
    const bool converted = toBytes(first, a) && toBytes(second, b);
    errno = error;
    return converted ? strcasecmp(first.data(), second.data()) : wcscasecmp(a, b);
}

int _wrmdir(const wchar_t* path) {
    Bytes bytes;
    return toBytes(bytes, path) ? rmdir(bytes.data()) : -1;
}

wchar_t* _wgetenv(const wchar_t* name) {
    static Bytes bytes;
    const char* value = toBytes(bytes, name) ? std::getenv(bytes.data()) : nullptr;
    return value ? toSharedText(value) : nullptr;
}

wchar_t* _wctime(const time_t* timer) {
    if (!timer) {
        errno = Error::InvalidArgument;
        return nullptr;
    }
    const char* text = std::ctime(timer);
    return text ? toSharedText(text) : nullptr;
}
