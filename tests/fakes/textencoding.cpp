#include "fakes/textencoding.h"

#include <algorithm>

namespace KxTest {

std::optional<std::size_t> FakeTextEncoding::decode(std::string_view bytes,
                                                    std::span<wchar_t> room) {
    ++conversions;
    std::wstring text;
    for (const char byte : bytes) {
        if (malformed.find(byte) != std::string::npos)
            return std::nullopt;
        const auto special = characters.find(byte);
        text += special != characters.end() ? special->second
                                            : std::wstring(1, static_cast<unsigned char>(byte));
    }
    if (text.size() > room.size())
        return std::nullopt;
    std::ranges::copy(text, room.begin());
    return text.size();
}

std::optional<std::size_t> FakeTextEncoding::encode(std::wstring_view text, std::span<char> room) {
    ++conversions;
    constexpr wchar_t end = 0x100;
    std::string bytes;
    for (const wchar_t character : text) {
        const auto replacement = replacements.find(character);
        if (replacement != replacements.end())
            bytes += replacement->second;
        else if (character >= 0 && character < end)
            bytes += static_cast<char>(character);
        else
            return std::nullopt;
    }
    if (bytes.size() > room.size())
        return std::nullopt;
    std::ranges::copy(bytes, room.begin());
    return bytes.size();
}

} // namespace KxTest
