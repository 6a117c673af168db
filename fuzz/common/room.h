#pragma once

#include "common/require.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace KxFuzz {

/// A buffer for a result, of which every character can be told to have been written or not, also
/// behind its end: Qt and the C library are not instrumented.
template <class Char>
class Room {
public:
    explicit Room(std::size_t withSize) : size(withSize), characters(withSize + beyond, mark) {}

    [[nodiscard]] Char* get() { return characters.data(); }
    [[nodiscard]] const Char& operator[](std::size_t place) const { return characters[place]; }

    /// Requires that nothing was written from some place on.
    void requireUntouchedFrom(std::size_t place) const {
        require(std::all_of(characters.begin() + static_cast<std::ptrdiff_t>(place),
                            characters.end(), [](Char one) { return one == mark; }));
    }

    /// The text in it, which must end within its size.
    [[nodiscard]] std::basic_string_view<Char> text() const {
        const auto end = characters.begin() + static_cast<std::ptrdiff_t>(size);
        const auto found = std::find(characters.begin(), end, Char());
        require(found != end);
        return {characters.data(), static_cast<std::size_t>(found - characters.begin())};
    }

    /// As many characters from its beginning, zeros too.
    [[nodiscard]] std::basic_string_view<Char> first(std::size_t count) const {
        require(count <= characters.size());
        return {characters.data(), count};
    }

private:
    static constexpr std::size_t beyond = 16;
    static constexpr Char mark = 0x5A;

    const std::size_t size;
    std::vector<Char> characters;
};

} // namespace KxFuzz
