#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace Korvex {

/// The encoding that 8-bit text has on this system.
///
/// Any thread may call any operation. None keeps anything of the text that it converted. `errno` is
/// not part of any result.
class TextEncoding {
public:
    virtual ~TextEncoding() = default;

    /// Whether the first 128 bytes and characters are the same, so that text of these alone needs
    /// no conversion.
    [[nodiscard]] virtual bool extendsAscii() = 0;

    /// Converts bytes to characters. Zeros are characters like others.
    /// \return The count of characters. Nothing when the bytes are malformed or break off inside a
    /// character, or when there is no room for all characters; what the room holds is undefined
    /// then.
    [[nodiscard]] virtual std::optional<std::size_t> decode(std::string_view bytes,
                                                            std::span<wchar_t> room) = 0;

    /// Converts characters to bytes. A character that the encoding lacks becomes what users of the
    /// encoding write in its place, as far as that is known.
    /// \return The count of bytes. Nothing when a character has no counterpart at all or is none (a
    /// surrogate, a value above U+10FFFF), or when there is no room for all bytes; what the room
    /// holds is undefined then. A character never vanishes and never becomes a mere question mark.
    [[nodiscard]] virtual std::optional<std::size_t> encode(std::wstring_view characters,
                                                            std::span<char> room) = 0;
};

/// The encoding in force: that of the user's locale, as the program found it at the first use.
TextEncoding& systemTextEncoding();

} // namespace Korvex
