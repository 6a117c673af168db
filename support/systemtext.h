#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// Text in the system's encoding, within the limits of the Windows calls that convert it.
namespace Korvex {

inline constexpr std::size_t longestSystemText = 259; // what goes into a conversion
inline constexpr std::size_t longestEncodedText = 31; // bytes that come out, the last zero included
using EncodedText = std::array<char, longestEncodedText>;

/// Converts 1 to 259 bytes to characters and a zero behind them. A leading mark of byte order is
/// left out. \a out may overlap the bytes, and has room for the result whatever it is.
/// \return The length in UTF-16 units; zeros follow the characters up to that index. 0, and nothing
/// is written, for malformed text. `errno` is left alone.
[[nodiscard]] int decodeSystemText(std::string_view bytes, wchar_t* out);

/// Converts characters to bytes. A leading mark of byte order is left out.
/// \return The count of bytes; 0 when a character cannot be converted or the result is too long.
/// `errno` is not part of the result.
[[nodiscard]] std::size_t encodeSystemText(std::wstring_view text, EncodedText& out);

} // namespace Korvex
