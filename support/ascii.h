#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace Korvex {

inline constexpr int firstBeyondAscii = 0x80;

/// Whether a text of at least so many bytes is all ASCII, looked at in steps that the compiler
/// makes one instruction or two of. The last may overlap the one before.
template <std::size_t Step>
bool isAsciiInSteps(std::string_view bytes) {
    std::array<unsigned char, Step> seen{};
    const auto look = [&](const char* at) {
        for (std::size_t i = 0; i < Step; ++i)
            seen[i] |= static_cast<unsigned char>(at[i]);
    };
    for (std::size_t at = 0; at + Step <= bytes.size(); at += Step)
        look(bytes.data() + at);
    look(bytes.data() + bytes.size() - Step);
    unsigned char any = 0;
    for (const unsigned char bits : seen)
        any |= bits;
    return any < firstBeyondAscii;
}

/// Whether a text, not an empty one, is all ASCII.
inline bool isAscii(std::string_view bytes) {
    constexpr std::size_t large = 32;
    constexpr std::size_t small = 8;
    if (bytes.size() >= large)
        return isAsciiInSteps<large>(bytes);
    return bytes.size() >= small ? isAsciiInSteps<small>(bytes) : isAsciiInSteps<1>(bytes);
}

inline bool isAscii(std::wstring_view text) {
    return std::ranges::all_of(text, [](wchar_t c) { return c >= 0 && c < firstBeyondAscii; });
}

} // namespace Korvex
