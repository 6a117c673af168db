#include "platform/textencoding.h"

#include "common/locales.h"
#include "fakes/textencoding.h"
#include "platform/linux/localetextencoding.h"
#include "platform/replaceable.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <thread>
#include <vector>

using Korvex::LocaleTextEncoding;
using Korvex::TextEncoding;

namespace {

std::optional<std::wstring> decoded(TextEncoding& encoding, std::string_view bytes) {
    std::vector<wchar_t> room(bytes.size() + 1);
    const auto count = encoding.decode(bytes, room);
    return count ? std::optional(std::wstring(room.data(), *count)) : std::nullopt;
}

std::optional<std::string> encoded(TextEncoding& encoding, std::wstring_view text) {
    std::vector<char> room(16 * text.size() + 1);
    const auto count = encoding.encode(text, room);
    return count ? std::optional(std::string(room.data(), *count)) : std::nullopt;
}

/// Latin-1 of the system's making.
struct RealLatin1 {
    KxTest::TestLocales locales;
    LocaleTextEncoding encoding{"de_DE.ISO-8859-1"};
};

struct FakeLatin1 {
    FakeLatin1() { encoding.replacements[L'€'] = "EUR"; }
    KxTest::FakeTextEncoding encoding;
};

/// A locale that the tests brought along.
class Locale : public testing::Test {
protected:
    KxTest::TestLocales locales;
};

} // namespace

template <class Latin1>
class TextEncodingContract : public testing::Test {
protected:
    Latin1 latin1;
    TextEncoding& encoding = latin1.encoding;
};
using Latin1Encodings = testing::Types<RealLatin1, FakeLatin1>;
TYPED_TEST_SUITE(TextEncodingContract, Latin1Encodings);

TYPED_TEST(TextEncodingContract, ExtendsAscii) {
    EXPECT_TRUE(this->encoding.extendsAscii());
}

TYPED_TEST(TextEncodingContract, ConvertsBothWaysZerosIncluded) {
    using namespace std::string_literals;
    EXPECT_EQ(decoded(this->encoding, "a\0\xE4\xFF"s), L"a\0äÿ"s);
    EXPECT_EQ(encoded(this->encoding, L"a\0äÿ"s), "a\0\xE4\xFF"s);
    EXPECT_EQ(decoded(this->encoding, ""), L"");
    EXPECT_EQ(encoded(this->encoding, L""), "");
}

TYPED_TEST(TextEncodingContract, RefusesWhatDoesNotFit) {
    std::array<wchar_t, 3> characters{};
    EXPECT_EQ(this->encoding.decode("abc", characters), 3U);
    EXPECT_EQ(this->encoding.decode("abcd", characters), std::nullopt);
    std::array<char, 3> bytes{};
    EXPECT_EQ(this->encoding.encode(L"abc", bytes), 3U);
    EXPECT_EQ(this->encoding.encode(L"abcd", bytes), std::nullopt);
    EXPECT_EQ(this->encoding.encode(L"a€", bytes), std::nullopt)
        << "the replacement needs room too";
}

TYPED_TEST(TextEncodingContract, ReplacesWhatTheEncodingLacks) {
    EXPECT_EQ(encoded(this->encoding, L"5 € und 6 €"), "5 EUR und 6 EUR");
}

TYPED_TEST(TextEncodingContract, RefusesWhatHasNoCounterpart) {
    EXPECT_EQ(encoded(this->encoding, L"\u4E00"), std::nullopt);
    EXPECT_EQ(encoded(this->encoding, L"a?\u4E00"), std::nullopt);
    EXPECT_EQ(encoded(this->encoding, L"?"), "?");
}

TYPED_TEST(TextEncodingContract, RefusesWhatIsNoCharacter) {
    for (const char32_t value : {0xD800U, 0xDFFFU, 0x110000U, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(encoded(this->encoding, std::wstring(1, static_cast<wchar_t>(value))),
                  std::nullopt)
            << std::hex << unsigned(value);
}

TYPED_TEST(TextEncodingContract, GoesOnAfterATextThatFailed) {
    EXPECT_EQ(encoded(this->encoding, L"\u4E00"), std::nullopt);
    EXPECT_EQ(encoded(this->encoding, L"ä"), "\xE4");
}

TEST_F(Locale, TheCLocaleIsAsciiAndReplacesWhatItCan) {
    LocaleTextEncoding encoding("C");
    EXPECT_TRUE(encoding.extendsAscii());
    EXPECT_EQ(decoded(encoding, "abc"), L"abc");
    EXPECT_EQ(decoded(encoding, "\xE4"), std::nullopt);
    EXPECT_EQ(encoded(encoding, L"„€“"), ",,EUR\"");
    EXPECT_EQ(encoded(encoding, L"\u4E00"), std::nullopt);
}

TEST_F(Locale, ACharacterNeverBecomesAQuestionMark) {
    LocaleTextEncoding encoding("de_DE.ISO-8859-1");
    EXPECT_EQ(encoded(encoding, L"\uFF1F"), std::nullopt) << "the wide question mark";
    EXPECT_EQ(encoded(encoding, L"\U0010FFFD"), std::nullopt);
    EXPECT_EQ(encoded(encoding, L"?\u00BF"), "?\xBF");
}

TEST_F(Locale, ACharacterNeverVanishes) {
    LocaleTextEncoding encoding("de_DE.ISO-8859-1");
    EXPECT_EQ(encoded(encoding, L"e\u0301"), std::nullopt) << "an accent";
    EXPECT_EQ(encoded(encoding, L"a\u200Bb"), std::nullopt) << "a space without width";
    EXPECT_EQ(encoded(encoding, L"a\U000E0041b"), std::nullopt) << "a language tag";
    LocaleTextEncoding utf8("de_DE.UTF-8");
    EXPECT_EQ(encoded(utf8, L"\U000E0041"), "\xF3\xA0\x81\x81");
}

TEST_F(Locale, ReplacementsAreThoseOfTheLocale) {
    LocaleTextEncoding german("de_DE.ISO-8859-1");
    EXPECT_EQ(encoded(german, L"„ok“"), "\xBBok\xAB");
    LocaleTextEncoding japanese("ja_JP.EUC-JP");
    EXPECT_EQ(encoded(japanese, L"„ok“"), ",,ok\xA1\xC8");
}

TEST_F(Locale, Utf8IsConvertedStrictly) {
    LocaleTextEncoding encoding("de_DE.UTF-8");
    EXPECT_TRUE(encoding.extendsAscii());
    EXPECT_EQ(decoded(encoding, "ä€\U0001F600"), L"ä€\U0001F600");
    EXPECT_EQ(encoded(encoding, L"ä€\U0001F600"), "ä€\U0001F600");
    EXPECT_EQ(decoded(encoding, "ab\xE2\x82"), std::nullopt) << "breaks off";
    EXPECT_EQ(decoded(encoding, "ab\xC3x"), std::nullopt) << "malformed";
    EXPECT_EQ(decoded(encoding, "\xC0\x80"), std::nullopt) << "longer than needed";
    EXPECT_EQ(decoded(encoding, "\xED\xA0\x80"), std::nullopt) << "a surrogate";
}

TEST_F(Locale, MultiByteEncodingsAreConverted) {
    LocaleTextEncoding encoding("ja_JP.EUC-JP");
    EXPECT_TRUE(encoding.extendsAscii());
    EXPECT_EQ(decoded(encoding, "a\xC6\xFC\xCB\xDC"), L"a日本");
    EXPECT_EQ(encoded(encoding, L"a日本"), "a\xC6\xFC\xCB\xDC");
    EXPECT_EQ(encoded(encoding, L"日€本"), "\xC6\xFC"
                                           "EUR\xCB\xDC");
    EXPECT_EQ(decoded(encoding, "a\xC6"), std::nullopt) << "breaks off";
    EXPECT_EQ(decoded(encoding, "a\xC6 "), std::nullopt) << "malformed";
    EXPECT_EQ(encoded(encoding, L"\U0001F600"), std::nullopt);
}

TEST_F(Locale, AnAsciiByteInsideACharacterIsNoAscii) {
    LocaleTextEncoding encoding("ja_JP.SHIFT_JIS");
    EXPECT_EQ(decoded(encoding, "\x83\x5C"), L"ソ") << "the second byte is a backslash by itself";
    EXPECT_EQ(encoded(encoding, L"ソ"), "\x83\x5C");
}

TEST_F(Locale, CharactersThatAConverterHoldsBackAreNotLost) {
    // Hebrew letters may be followed by points that make one character with them.
    LocaleTextEncoding hebrew("he_IL.CP1255");
    EXPECT_EQ(decoded(hebrew, "\xF9"), L"\u05E9");
    EXPECT_EQ(encoded(hebrew, L"\u05E9\u05C1"), "\xF9\xD1");
    // So may Latin letters in Hong Kong; a replacement must not overtake the letter before it.
    LocaleTextEncoding chinese("zh_HK.BIG5-HKSCS");
    EXPECT_EQ(encoded(chinese, L"\u00CA\u0304"), "\x88\x62");
    EXPECT_EQ(encoded(chinese, L"\u00CA\u00AB"), "\x88\x66<<");
    EXPECT_EQ(decoded(chinese, "\x88\x62"), L"\u00CA\u0304");
}

TEST_F(Locale, AnEncodingThatDoesNotExtendAsciiSaysSo) {
    LocaleTextEncoding encoding("en_US.IBM037");
    EXPECT_FALSE(encoding.extendsAscii());
    EXPECT_EQ(decoded(encoding, "\xC1\xC2"), L"AB");
    EXPECT_EQ(encoded(encoding, L"AB?"), "\xC1\xC2\x6F");
    EXPECT_EQ(encoded(encoding, L"\u4E00"), std::nullopt) << "its question mark is another byte";
}

TEST_F(Locale, AnUnknownEncodingIsMacRoman) {
    for (const char* name : {"de_DE.KXQTS-UNKNOWN", "xx_XX.NO-SUCH-LOCALE"}) {
        LocaleTextEncoding encoding(name);
        EXPECT_TRUE(encoding.extendsAscii()) << name;
        EXPECT_EQ(decoded(encoding, "\x80\xDB"), L"Ä€") << name;
        EXPECT_EQ(encoded(encoding, L"Ä€"), "\x80\xDB") << name;
    }
}

TEST_F(Locale, TheUsersLocaleIsLookedUpOnce) {
    LocaleTextEncoding encoding;
    {
        const KxTest::EnvironmentVariable user("LC_ALL", "de_DE.ISO-8859-1");
        EXPECT_EQ(decoded(encoding, "\xE4"), L"ä");
    }
    const KxTest::EnvironmentVariable user("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(decoded(encoding, "\xE4"), L"ä");
}

TEST_F(Locale, ConvertsAfterItsConvertersWereReleased) {
    LocaleTextEncoding encoding("ja_JP.EUC-JP");
    EXPECT_EQ(decoded(encoding, "\xC6\xFC"), L"日");
    encoding.releaseConverters();
    EXPECT_EQ(decoded(encoding, "\xC6\xFC"), L"日");
}

TEST_F(Locale, ManyThreadsConvertAtOnce) {
    constexpr int threads = 8; // more than converters are kept for
    constexpr int rounds = 500;
    LocaleTextEncoding encoding("ja_JP.EUC-JP");
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                EXPECT_EQ(decoded(encoding, "\xC6\xFC\xCB\xDC"), L"日本");
                EXPECT_EQ(encoded(encoding, L"日€本"), "\xC6\xFC"
                                                       "EUR\xCB\xDC");
                EXPECT_EQ(decoded(encoding, "\xC6"), std::nullopt);
            }
        });
    for (std::thread& thread : running)
        thread.join();
}

TEST_F(Locale, TheEncodingInForceCanBeReplaced) {
    KxTest::FakeTextEncoding fake;
    TextEncoding& system = Korvex::systemTextEncoding();
    {
        const Korvex::Replacement<TextEncoding> replacement(fake);
        EXPECT_EQ(&Korvex::systemTextEncoding(), &fake);
    }
    EXPECT_EQ(&Korvex::systemTextEncoding(), &system);
}
