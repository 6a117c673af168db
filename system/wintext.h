#pragma once

#include <QString>

namespace Korvex {

/// The text of a string argument of either kind; the null string for null.
inline QString windowsText(const char* string) {
    return QString::fromLatin1(string);
}

inline QString windowsText(const wchar_t* string) {
    return string ? QString::fromWCharArray(string) : QString();
}

} // namespace Korvex
