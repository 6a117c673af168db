#include "platform/linux/localetextencoding.h"

#include "platform/character.h"
#include "platform/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <langinfo.h>
#include <numeric>

namespace Korvex {

namespace {

// The C library's name of its inner encoding, in which each conversion is one step: nothing of the
// text passes through memory that a converter keeps.
constexpr const char* wide = "WCHAR_T";

constexpr std::size_t asciiSize = 128;
constexpr std::size_t longestReplacement = 64; // of one character, in bytes

template <std::size_t Size>
bool store(std::array<char, Size>& place, const char* text) {
    const std::size_t length = std::strlen(text);
    if (length == 0 || length >= Size)
        return false;
    std::copy_n(text, length + 1, place.data());
    return true;
}

std::span<const char> bytesOf(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

/// The characters of language tags, which the C library's converters silently leave out.
bool isTagCharacter(wchar_t value) {
    constexpr wchar_t first = 0xE0000;
    constexpr wchar_t last = 0xE007F;
    return value >= first && value <= last;
}

/// Converts all of a text. \return The bytes written; nothing when one of them is refused.
std::optional<std::size_t> convert(Converter* converter, std::span<const char> input,
                                   std::span<char> room) {
    std::span<char> left = room;
    if (!converter || converter->run(input, left) != 0 || converter->finish(left) != 0)
        return std::nullopt;
    return room.size() - left.size();
}

} // namespace

void LocaleTextEncoding::lookUp() {
    std::array<char, longestCodesetName + 1> found{};
    if (const Locale locale = openLocale(asked)) {
        store(localeName, nl_langinfo_l(_NL_LOCALE_NAME(LC_CTYPE), locale.get()));
        if (store(found, nl_langinfo_l(CODESET, locale.get())) &&
            Converter(wide, found.data()).isOpen())
            codeset = found;
    }
    std::strcat(std::strcpy(looseCodeset.data(), codeset.data()), "//TRANSLIT");
    ascii = mapsAsciiToItself();
    utf8 = std::strcmp(codeset.data(), "UTF-8") == 0;
    lookedUp.store(true, std::memory_order_release);
}

void LocaleTextEncoding::ensureLookedUp() {
    if (!lookedUp.load(std::memory_order_acquire))
        std::call_once(lookUpOnce, [this] { lookUp(); });
}

bool LocaleTextEncoding::mapsAsciiToItself() {
    std::array<char, asciiSize> bytes{};
    std::array<wchar_t, asciiSize> characters{};
    std::iota(bytes.begin(), bytes.end(), '\0');
    std::iota(characters.begin(), characters.end(), L'\0');
    std::array<char, asciiSize> encoded{};
    std::array<wchar_t, asciiSize> decoded{};
    PooledConverter decoder(decoders, wide, codeset.data());
    PooledConverter encoder(encoders, codeset.data(), wide);
    const std::span<char> decodedBytes(reinterpret_cast<char*>(decoded.data()), sizeof decoded);
    return convert(decoder.get(), bytes, decodedBytes) == sizeof decoded && decoded == characters &&
           convert(encoder.get(), bytesOf({characters.data(), asciiSize}), encoded) ==
               sizeof encoded &&
           encoded == bytes;
}

bool LocaleTextEncoding::extendsAscii() {
    ensureLookedUp();
    return ascii;
}

std::optional<std::size_t> LocaleTextEncoding::decode(std::string_view bytes,
                                                      std::span<wchar_t> room) {
    ensureLookedUp();
    if (utf8)
        return decodeUtf8(bytes, room);
    const PooledConverter converter(decoders, wide, codeset.data());
    const std::span<char> output(reinterpret_cast<char*>(room.data()), room.size_bytes());
    const auto written = convert(converter.get(), bytes, output);
    return written ? std::optional(*written / sizeof(wchar_t)) : std::nullopt;
}

std::optional<std::size_t> LocaleTextEncoding::encode(std::wstring_view characters,
                                                      std::span<char> room) {
    ensureLookedUp();
    return utf8 ? encodeUtf8(characters, room) : encodeByConverter(characters, room);
}

std::optional<std::size_t> LocaleTextEncoding::encodeByConverter(std::wstring_view characters,
                                                                 std::span<char> room) {
    if (!std::ranges::all_of(characters, isCharacter) ||
        (std::ranges::any_of(characters, isTagCharacter) && !keepsTagCharacters()))
        return std::nullopt;
    const PooledConverter converter(encoders, codeset.data(), wide);
    if (!converter.get())
        return std::nullopt;
    std::span<const char> input = bytesOf(characters);
    std::span<char> left = room;
    while (const int error = converter.get()->run(input, left)) {
        if (error != EILSEQ || converter.get()->finish(left) != 0 ||
            !encodeLoosely(characters[characters.size() - input.size() / sizeof(wchar_t)], left))
            return std::nullopt;
        input = input.subspan(sizeof(wchar_t));
    }
    if (converter.get()->finish(left) != 0)
        return std::nullopt;
    return room.size() - left.size();
}

bool LocaleTextEncoding::keepsTagCharacters() {
    constexpr std::wstring_view tag = L"\U000E0041";
    std::array<char, longestReplacement> bytes{};
    const PooledConverter converter(encoders, codeset.data(), wide);
    return convert(converter.get(), bytesOf(tag), bytes).value_or(0) > 0;
}

bool LocaleTextEncoding::encodeLoosely(wchar_t character, std::span<char>& room) {
    const PooledConverter converter(looseEncoders, looseCodeset.data(), wide, localeName.data());
    std::array<char, longestReplacement> replacement{};
    std::array<char, longestReplacement> questionMark{};
    const auto size = convert(converter.get(), bytesOf({&character, 1}), replacement);
    const auto markSize = convert(converter.get(), bytesOf(L"?"), questionMark);
    // The C library's own way to say that it knows no replacement, and one that says nothing.
    if (!size || *size == 0 || *size > room.size() ||
        (size == markSize && replacement == questionMark))
        return false;
    std::copy_n(replacement.data(), *size, room.data());
    room = room.subspan(*size);
    return true;
}

void LocaleTextEncoding::releaseConverters() {
    decoders.clear();
    encoders.clear();
    looseEncoders.clear();
}

} // namespace Korvex
