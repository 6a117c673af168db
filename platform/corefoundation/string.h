#pragma once

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation/string.h>

#include <QString>
#include <QStringView>

#include <atomic>

/// A string. The code units stand behind it in memory, or elsewhere for a constant.
struct __CFString : Korvex::Cf::Object {
    constexpr __CFString(const char16_t* text, CFIndex length, bool counted)
        : Object(Korvex::Cf::Type::String, counted), characters(text), count(length) {}

    const char16_t* const characters;
    const CFIndex count;
    mutable std::atomic<char*> bytes{nullptr}; ///< The 8-bit form, once it was asked for
};

namespace Korvex::Cf {

/// The code units of a string that is not null.
inline QStringView units(CFStringRef string) {
    return {string->characters, static_cast<qsizetype>(string->count)};
}

/// A copy as Qt keeps text.
inline QString text(CFStringRef string) {
    return units(string).toString();
}

/// A hash of code units, another one in every process.
[[nodiscard]] std::uint32_t hashOf(QStringView text);

/// A string of a text's code units; null when there is no memory.
[[nodiscard]] CFStringRef makeString(QStringView text);

void freeString(const __CFString* string);

} // namespace Korvex::Cf
