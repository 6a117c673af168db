#pragma once

#include <KxQts/winapi/types.h>

#include <QString>

namespace Korvex {

/// A path as clients of the Windows face give it; a null one is empty.
[[nodiscard]] inline QString pathFrom(LPCSTR path) {
    return QString::fromLatin1(path);
}

/// \copydoc pathFrom
[[nodiscard]] inline QString pathFrom(LPCWSTR path) {
    return path ? QString::fromWCharArray(path) : QString();
}

} // namespace Korvex
