#include "platform/utf8.h"

#include "platform/character.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iconv.h>
#include <random>
#include <string>

namespace {

/// The C library's converter, as an independent opinion.
class Iconv {
public:
    Iconv(const char* to, const char* from) : converter(iconv_open(to, from)) {}
    ~Iconv() { iconv_close(converter); }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;

    /// \return The count of bytes written; −1 when the text is malformed.
    long convert(const char* from, std::size_t size, char* to, std::size_t room) {
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(from);
        char* out = to;
        const std::size_t result = iconv(converter, &in, &size, &out, &room);
        return result == static_cast<std::size_t>(-1) ? -1 : out - to;
    }

private:
    iconv_t converter;
};

} // namespace

TEST(Utf8, EveryCharacterIsEncodedAndDecodedAsByTheCLibrary) {
    Iconv reference("UTF-8", "WCHAR_T");
    for (wchar_t character = 0; character < 0x110000; ++character) {
        if (!Korvex::isCharacter(character))
            continue;
        std::array<char, 4> expected{};
        const long size = reference.convert(reinterpret_cast<const char*>(&character),
                                            sizeof character, expected.data(), expected.size());
        std::array<char, 4> bytes{};
        ASSERT_EQ(Korvex::encodeUtf8({&character, 1}, bytes), size) << std::hex << int(character);
        ASSERT_EQ(bytes, expected) << std::hex << int(character);
        std::array<wchar_t, 1> back{};
        ASSERT_EQ(Korvex::decodeUtf8({bytes.data(), std::size_t(size)}, back), 1U);
        ASSERT_EQ(back[0], character);
    }
}

TEST(Utf8, ShortSequencesAreJudgedAsByTheCLibrary) {
    Iconv reference("WCHAR_T", "UTF-8");
    for (unsigned value = 0; value < 0x1000000; value += 1 + value % 3) {
        const std::array<char, 3> bytes{char(value >> 16), char(value >> 8), char(value)};
        std::array<wchar_t, 3> expected{};
        const long size = reference.convert(
            bytes.data(), bytes.size(), reinterpret_cast<char*>(expected.data()), sizeof expected);
        std::array<wchar_t, 3> characters{};
        const auto count = Korvex::decodeUtf8({bytes.data(), bytes.size()}, characters);
        ASSERT_EQ(count.has_value(), size >= 0) << std::hex << value;
        if (count) {
            ASSERT_EQ(*count * sizeof(wchar_t), std::size_t(size)) << std::hex << value;
            ASSERT_EQ(characters, expected) << std::hex << value;
        }
    }
}

TEST(Utf8, FourByteSequencesAreJudgedAsByTheCLibrary) {
    Iconv reference("WCHAR_T", "UTF-8");
    std::minstd_rand random(1);
    for (int round = 0; round < 1000000; ++round) {
        const unsigned value = unsigned(random());
        const std::array<char, 4> bytes{char(0xEE + value % 18), char(0x7C + (value >> 8) % 70),
                                        char(0x7E + (value >> 14) % 68),
                                        char(0x7E + (value >> 20) % 68)};
        std::array<wchar_t, 4> expected{};
        const long size = reference.convert(
            bytes.data(), bytes.size(), reinterpret_cast<char*>(expected.data()), sizeof expected);
        // The C library takes some values beyond the last character.
        const bool valid = size >= 0 && std::ranges::all_of(expected, Korvex::isCharacter);
        std::array<wchar_t, 4> characters{};
        const auto count = Korvex::decodeUtf8({bytes.data(), bytes.size()}, characters);
        ASSERT_EQ(count.has_value(), valid) << round;
        if (count) {
            ASSERT_EQ(long(*count * sizeof(wchar_t)), size) << round;
            ASSERT_EQ(characters, expected) << round;
        }
    }
}

TEST(Utf8, RefusesWhatDoesNotFitAndNeverWritesBehindTheRoom) {
    std::array<wchar_t, 3> characters{L'x', L'x', L'x'};
    EXPECT_EQ(Korvex::decodeUtf8("ab", std::span(characters).first(1)), std::nullopt);
    EXPECT_EQ(characters[1], L'x');
    std::array<char, 4> bytes{'x', 'x', 'x', 'x'};
    for (const wchar_t* text : {L"aaaa", L"aä€", L"\U0001F600"}) {
        EXPECT_EQ(Korvex::encodeUtf8(text, std::span(bytes).first(3)), std::nullopt);
        EXPECT_EQ(bytes[3], 'x');
    }
}

TEST(Utf8, ValuesThatAreNoCharactersAreRefused) {
    for (const unsigned value : {0xD800U, 0xDFFFU, 0x110000U, 0x80000000U, 0xFFFFFFFFU}) {
        const auto character = static_cast<wchar_t>(value);
        std::array<char, 8> bytes{};
        EXPECT_EQ(Korvex::encodeUtf8({&character, 1}, bytes), std::nullopt) << std::hex << value;
    }
}
