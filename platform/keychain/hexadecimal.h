#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Korvex {

/// Two small digits a byte.
template <std::size_t Size>
std::string hexadecimal(const std::array<std::uint8_t, Size>& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * Size);
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

/// \return False for what is no such text.
template <std::size_t Size>
bool fromHexadecimal(std::string_view text, std::array<std::uint8_t, Size>& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    if (text.size() != 2 * Size)
        return false;
    for (std::size_t i = 0; i < Size; ++i) {
        const std::size_t high = digits.find(text[2 * i]);
        const std::size_t low = digits.find(text[2 * i + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos)
            return false;
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return true;
}

} // namespace Korvex
