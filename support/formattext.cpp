#include <KxQts/errors.h>
#include <KxQts/support/text.h>

#include "support/wipe.h"

#include <cerrno>
#include <cwchar>
#include <memory>
#include <new>

namespace {

constexpr std::size_t longestText = 2048; // wide characters, the terminating zero included

bool isRewritten(wchar_t percent, wchar_t letter) {
    return percent == L'%' && (letter == L'c' || letter == L's');
}

/// The wide format, in which "%c" and "%s" mean wide arguments. Exactly these: anything between the
/// percent sign and the letter keeps them as they are, and what stands before the percent sign
/// makes no difference.
std::unique_ptr<wchar_t[]> wideFormat(const QString& format) {
    const auto size = static_cast<std::size_t>(format.size());
    const auto percents = static_cast<std::size_t>(format.count(u'%'));
    std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[size + percents + 1]);
    if (!wide)
        return nullptr;
    // It moves to the front from behind, and grows meanwhile.
    wchar_t* in = wide.get() + percents;
    const wchar_t* const end = in + format.toWCharArray(in);
    wchar_t* out = wide.get();
    while (in != end) {
        const wchar_t character = *in++;
        *out++ = character;
        if (in != end && isRewritten(character, *in))
            *out++ = L'l';
    }
    *out = L'\0';
    return wide;
}

int formatInto(QString& out, const wchar_t* format, wchar_t* text, va_list args) {
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): not seen through the reference below
    const int length = std::vswprintf(text, longestText, format, args);
    if (length > 0)
        out = QString::fromWCharArray(text);
    const std::size_t used = length < 0 ? longestText : static_cast<std::size_t>(length) + 1;
    Korvex::wipe(text, used * sizeof(wchar_t)); // it may be a secret
    return length;
}

} // namespace

int formatWithWCharQString(QString& out, const QString& format, va_list args) {
    out = QString();
    if (format.isEmpty()) {
        errno = Korvex::Error::InvalidArgument;
        return -1;
    }
    const auto wide = wideFormat(format);
    const std::unique_ptr<wchar_t[]> text(new (std::nothrow) wchar_t[longestText]);
    if (!wide || !text) {
        errno = Korvex::Error::NoMemory;
        return -1;
    }
    return formatInto(out, wide.get(), text.get(), args);
}

// The language leaves open what starting an argument list behind a reference does; for g++ and
// clang it is the same as behind any other parameter.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wvarargs"

int formatWithWCharQString(QString& out, const QString& format, ...) {
    va_list args;
    va_start(args, format);
    const int length = formatWithWCharQString(out, format, args);
    va_end(args);
    return length;
}

#pragma GCC diagnostic pop
