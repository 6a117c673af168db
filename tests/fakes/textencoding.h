#pragma once

#include "platform/textencoding.h"

#include <map>
#include <string>

namespace KxTest {

/// Latin-1, with replacements and flaws that a test writes down.
class FakeTextEncoding final : public Korvex::TextEncoding {
public:
    bool extendsAscii() override { return ascii; }
    std::optional<std::size_t> decode(std::string_view bytes, std::span<wchar_t> room) override;
    std::optional<std::size_t> encode(std::wstring_view text, std::span<char> room) override;

    bool ascii = true;
    std::string malformed;                       ///< Bytes that no text may contain
    std::map<char, std::wstring> characters;     ///< Bytes that are not Latin-1
    std::map<wchar_t, std::string> replacements; ///< What users write for a character
    int conversions = 0;                         ///< How many there were
};

} // namespace KxTest
