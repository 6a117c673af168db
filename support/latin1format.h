#pragma once

#include <QByteArray>

#include <cstdarg>

namespace Korvex {

/// Formats like `QString::vasprintf`, except that every 8-bit text, in the format and behind `%s`,
/// is Latin-1 and arrives byte for byte; a null `%s` or `%ls` argument is the empty text.
/// Characters beyond Latin-1 become "?". Throws `std::bad_alloc` without memory.
///
/// \param args Used up.
[[nodiscard]] QByteArray formatLatin1(const char* format, va_list args);

} // namespace Korvex
