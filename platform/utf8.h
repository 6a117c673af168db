#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace Korvex {

/// Converts UTF-8 to characters.
/// \return The count of characters; nothing when the text is malformed, breaks off inside a character
/// or holds more characters than there is room for.
[[nodiscard]] std::optional<std::size_t> decodeUtf8(std::string_view bytes,
                                                    std::span<wchar_t> room);

/// Converts characters to UTF-8.
/// \return The count of bytes; nothing when one of the values is no character or when there is no room
/// for all bytes.
[[nodiscard]] std::optional<std::size_t> encodeUtf8(std::wstring_view characters,
                                                    std::span<char> room);

} // namespace Korvex
