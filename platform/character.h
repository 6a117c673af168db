#pragma once

namespace Korvex {

/// Whether a value is a character: no surrogate, and not beyond the last one.
constexpr bool isCharacter(wchar_t value) {
    constexpr char32_t last = 0x10FFFF;
    constexpr char32_t firstSurrogate = 0xD800;
    constexpr char32_t lastSurrogate = 0xDFFF;
    const auto code = static_cast<char32_t>(value);
    return code <= last && (code < firstSurrogate || code > lastSurrogate);
}

} // namespace Korvex
