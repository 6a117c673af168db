#pragma once

#include <cstddef>
#include <string>

namespace KxTest {

/// A text that is nowhere in this process's memory unless somebody puts it there.
class UnwrittenText {
public:
    explicit UnwrittenText(std::size_t length);

    /// Writes the text to memory: the caller's.
    template <class Text>
    void writeTo(Text& text) const {
        for (const char character : disguised)
            text += typename Text::value_type(character ^ disguise);
    }

    /// How often the text is in this process's writable memory with units of a size.
    [[nodiscard]] std::size_t occurrences(std::size_t unitSize) const;

private:
    [[nodiscard]] std::size_t occurrencesIn(const char* memory, std::size_t size,
                                            std::size_t unitSize) const;

    static constexpr char disguise = 0x15;

    std::string disguised;
};

} // namespace KxTest
