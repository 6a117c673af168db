#pragma once

#include <KxQts/winapi/types.h>

#include <QString>

namespace Korvex {

/// The text that a client of the Windows face gives, Latin-1 or wide; a null one is a null string.
[[nodiscard]] inline QString windowsText(LPCSTR text) {
    return QString::fromLatin1(text);
}

/// \copydoc windowsText
[[nodiscard]] inline QString windowsText(LPCWSTR text) {
    return text ? QString::fromWCharArray(text) : QString();
}

} // namespace Korvex
