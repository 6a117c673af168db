/// \file
/// Strings for platform calls, formatting with wide arguments, and wiping of secrets.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/text.h>

#include <QByteArray>
#include <QString>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Korvex {

/// An 8-bit copy of a string for the duration of a call. Characters beyond Latin-1 become "?".
///
/// The copy is wiped before its memory is freed: what users type, passwords among it, does not stay
/// behind.
class KXQTS_EXPORT WCString {
public:
    /// The empty text.
    WCString() = default;
    /// Copies a string. Without memory, and of an empty string, it is the empty text.
    WCString(const QString& s); // NOLINT(google-explicit-constructor)
    ~WCString();

    WCString(const WCString&) = delete;
    WCString& operator=(const WCString&) = delete;

    /// The text, ended by a zero. Valid while this object lives.
    operator const char*() const { return str; } // NOLINT(google-explicit-constructor)

    char* str = sEmptyString; ///< The text; never null
    std::uint32_t size = 1;   ///< Bytes at `str`, the terminating zero included

    static char sEmptyString[1]; ///< What every empty text shares
};

/// A wide copy of a string for the duration of a call.
class KXQTS_EXPORT WWString {
public:
    /// The empty text.
    WWString() = default;
    /// Copies a string. Without memory, and of an empty string, it is the empty text.
    WWString(const QString& s); // NOLINT(google-explicit-constructor)
    /// Frees the copy. Unlike \ref WCString it is not wiped.
    ~WWString();

    WWString(const WWString&) = delete;
    WWString& operator=(const WWString&) = delete;

    /// The text, ended by a zero. Valid while this object lives.
    operator const wchar_t*() const { return str; } // NOLINT(google-explicit-constructor)

    wchar_t* str = sEmptyString; ///< The text, UTF-32
    /// Bytes at `str`: four for each UTF-16 unit of the string and for the zero. 0 for the empty
    /// text.
    std::uint32_t size = 0;

    static wchar_t sEmptyString[1]; ///< What every empty text shares
};

} // namespace Korvex

using Korvex::WCString;
using Korvex::WWString;

/// Formats like `swprintf` into a string, at most 2047 characters.
///
/// In the format every `%s` and `%c` stands for a wide string and a wide character. Only these two
/// sequences are meant: with flags, width or precision between (`%5s`) the argument is 8-bit text,
/// and the second half of `%%s` is rewritten like any other.
///
/// \param out Receives the text; the null string when there is none. Not the same object as
/// \a format: it is cleared first.
/// \return The count of wide characters. −1 with `errno` 22 for an empty format, with 12 when there
/// is no memory; negative as well when the text is too long or cannot be formatted.
KXQTS_EXPORT int formatWithWCharQString(QString& out, const QString& format, ...);
/// The same with an argument list, which is used up. In 32-bit programs a list is a `char*`: a
/// single argument of that type is taken for one, unless it is made a `const char*`.
KXQTS_EXPORT int formatWithWCharQString(QString& out, const QString& format, va_list args);
/// The same with one number, so that a plain 0 is never taken for an argument list.
template <class Number>
requires std::is_integral_v<Number> || std::is_null_pointer_v<Number>
int formatWithWCharQString(QString& out, const QString& format, Number argument) {
    return formatWithWCharQString(out, format, argument, 0);
}

/// Overwrites all bytes of an array with zero; its size stays. An array that shares its memory with
/// others gets memory of its own first, so what the others hold is not wiped.
KXQTS_EXPORT void KXQByteArrayDeepClean(QByteArray& a);

/// Overwrites the characters of a string with zero, **up to its first zero character**; its length
/// stays. A string that shares its memory with others gets memory of its own first, so what the
/// others hold is not wiped.
KXQTS_EXPORT void KXQStringDeepClean(QString& s);

/// Wipes a string like \ref KXQStringDeepClean and makes it the null string.
KXQTS_EXPORT void KXQStringDeepCleanAndRelease(QString& s);

/// Memory for a structure with a tail of variable length: \a size + \a extra bytes from array
/// `new`.
///
/// Give it back with `operator delete[]`; g++ warns where it sees both in one function, for it
/// pairs these operators by their names. Call it by name, or in a `new` expression for a type that
/// needs no clean-up: compilers refuse the expression for others, because the matching `delete`
/// would be the ordinary one for sized objects.
/// \return Null when there is no memory, or no number for so much of it.
KXQTS_EXPORT void* operator new(std::size_t size, std::size_t extra) noexcept;
