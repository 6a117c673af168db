#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace KxTest {

/// ASCII text in the character type of a form.
template <class Char>
std::basic_string<Char> as(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

/// Shows text of either form as a narrow one, for comparisons that print what they compare.
template <class Char>
std::string shown(const Char* text) {
    std::string ascii;
    for (; *text; ++text)
        ascii += static_cast<char>(*text);
    return ascii;
}

/// A buffer of which every character can be told to have been written or not.
template <class Char, std::size_t Size>
struct Marked {
    static constexpr Char mark = '#';

    Marked() { std::char_traits<Char>::assign(text, Size, mark); }
    explicit Marked(std::string_view start) : Marked() {
        std::copy(start.begin(), start.end(), text);
        text[start.size()] = Char();
    }

    /// All characters, zeros as '0' and untouched ones as '#'.
    [[nodiscard]] std::string bytes() const {
        std::string seen;
        for (const Char c : text)
            seen += c ? static_cast<char>(c) : '0';
        return seen;
    }

    Char text[Size];
};

} // namespace KxTest
