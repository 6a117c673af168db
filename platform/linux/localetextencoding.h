#pragma once

#include "platform/linux/converterpool.h"
#include "platform/textencoding.h"

#include <array>
#include <atomic>
#include <mutex>

namespace Korvex {

/// The encoding of a locale, converted by the C library.
class LocaleTextEncoding final : public TextEncoding {
public:
    /// \param locale The locale's name; empty for the user's. It is looked up at the first use.
    constexpr explicit LocaleTextEncoding(const char* locale = "") : asked(locale) {}
    ~LocaleTextEncoding() override { releaseConverters(); }

    LocaleTextEncoding(const LocaleTextEncoding&) = delete;
    LocaleTextEncoding& operator=(const LocaleTextEncoding&) = delete;

    bool extendsAscii() override;
    std::optional<std::size_t> decode(std::string_view bytes, std::span<wchar_t> room) override;
    std::optional<std::size_t> encode(std::wstring_view characters, std::span<char> room) override;

    /// Closes the converters that are kept open. Later conversions open new ones.
    void releaseConverters();

private:
    void ensureLookedUp();
    void lookUp();
    std::optional<std::size_t> encodeByConverter(std::wstring_view characters,
                                                 std::span<char> room);
    [[nodiscard]] bool mapsAsciiToItself();
    [[nodiscard]] bool keepsTagCharacters();
    [[nodiscard]] bool encodeLoosely(wchar_t character, std::span<char>& room);

    static constexpr std::size_t longestLocaleName = 255;
    static constexpr std::size_t longestCodesetName = 63;

    const char* const asked;
    std::once_flag lookUpOnce;
    std::atomic<bool> lookedUp{false}; // everything below is fixed from then on
    std::array<char, longestLocaleName + 1> localeName{"C"};
    std::array<char, longestCodesetName + 1> codeset{"MACINTOSH"};
    std::array<char, longestCodesetName + sizeof "//TRANSLIT"> looseCodeset{};
    bool ascii = false;
    bool utf8 = false; // converted here: the common case need not go through a converter
    ConverterPool decoders;
    ConverterPool encoders;
    ConverterPool looseEncoders;
};

} // namespace Korvex
