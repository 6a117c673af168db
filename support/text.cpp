#include <KxQts/support/text.h>

#include "support/wipe.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace Korvex {

namespace {

constexpr std::size_t largestSize = std::numeric_limits<std::uint32_t>::max();

} // namespace

constinit char WCString::sEmptyString[1] = {};
constinit wchar_t WWString::sEmptyString[1] = {};

WCString::WCString(const QString& s) {
    const auto length = static_cast<std::size_t>(s.size());
    if (length == 0 || length >= largestSize)
        return;
    try {
        QByteArray bytes = s.toLatin1();
        if (char* copy = new (std::nothrow) char[length + 1]) {
            std::memcpy(copy, bytes.constData(), length + 1);
            str = copy;
            size = static_cast<std::uint32_t>(length + 1);
        }
        wipe(bytes.data(), length);
    } catch (const std::bad_alloc&) {
        // The empty text says it all: these objects never fail visibly.
    }
}

WCString::~WCString() {
    if (str == sEmptyString)
        return;
    if (size > 1)
        wipe(str, size - 1);
    delete[] str;
}

WWString::WWString(const QString& s) {
    const auto length = static_cast<std::size_t>(s.size());
    if (length == 0 || length >= largestSize / sizeof(wchar_t))
        return;
    wchar_t* copy = new (std::nothrow) wchar_t[length + 1];
    if (!copy)
        return;
    const auto written = static_cast<std::size_t>(s.toWCharArray(copy));
    std::fill(copy + written, copy + length + 1, L'\0');
    str = copy;
    size = static_cast<std::uint32_t>((length + 1) * sizeof(wchar_t));
}

WWString::~WWString() {
    if (str != sEmptyString)
        delete[] str;
}

} // namespace Korvex

void KXQByteArrayDeepClean(QByteArray& a) {
    if (a.isEmpty())
        return;
    try {
        Korvex::wipe(a.data(), static_cast<std::size_t>(a.size()));
    } catch (const std::bad_alloc&) {
        // Only an array that shares its memory needs more, and what is shared stays anyway.
    }
}

void KXQStringDeepClean(QString& s) {
    if (s.isEmpty())
        return;
    try {
        QChar* characters = s.data();
        const QChar* end = std::find(characters, characters + s.size(), QChar());
        Korvex::wipe(characters, static_cast<std::size_t>(end - characters) * sizeof(QChar));
    } catch (const std::bad_alloc&) {
        // Only a string that shares its memory needs more, and what is shared stays anyway.
    }
}

void KXQStringDeepCleanAndRelease(QString& s) {
    KXQStringDeepClean(s);
    if (!s.isNull())
        s = QString();
}

void* operator new(std::size_t size, std::size_t extra) noexcept {
    std::size_t sum = 0;
    return __builtin_add_overflow(size, extra, &sum) ? nullptr
                                                     : ::operator new[](sum, std::nothrow);
}
