#include <KxQts/windows.h>

#include "common/locales.h"
#include "common/program.h"
#include "fakes/textencoding.h"
#include "platform/linux/localetextencoding.h"
#include "platform/replaceable.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int untouched = 77;
constexpr wchar_t filler = L'\uFFFF';

/// What a call to MultiByteToWideChar did.
struct Widened {
    int count = 0;
    std::array<wchar_t, 300> buffer{};

    [[nodiscard]] std::wstring text() const { return buffer.data(); }
    [[nodiscard]] bool isUntouched() const { return buffer.front() == filler; }
};

Widened widen(const std::string& text, int length = -1) {
    Widened result;
    result.buffer.fill(filler);
    errno = untouched;
    result.count = MultiByteToWideChar(CP_ACP, 0, text.c_str(), length, result.buffer.data(), 260);
    EXPECT_EQ(errno, untouched);
    return result;
}

/// What a call to WideCharToMultiByte did.
struct Narrowed {
    int count = 0;
    int error = 0;
    std::array<char, 64> buffer{};

    [[nodiscard]] std::string bytes() const {
        return {buffer.data(), static_cast<std::size_t>(count)};
    }
};

Narrowed narrow(const std::wstring& text, int length = -1, int room = 64) {
    Narrowed result;
    result.buffer.fill('#');
    errno = untouched;
    result.count = WideCharToMultiByte(CP_ACP, 0, text.c_str(), length, result.buffer.data(), room,
                                       nullptr, nullptr);
    result.error = errno;
    return result;
}

/// Memory whose last byte is followed by none.
class GuardedPage {
public:
    GuardedPage()
        : size(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          memory(static_cast<char*>(mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE,
                                         MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(memory + size, size, PROT_NONE);
    }
    ~GuardedPage() { munmap(memory, 2 * size); }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    /// Puts bytes at the end.
    char* put(const void* bytes, std::size_t count) {
        return static_cast<char*>(std::memcpy(memory + size - count, bytes, count));
    }

private:
    std::size_t size;
    char* memory;
};

/// Conversions in Latin-1, with flaws that a test may add.
class Conversion : public testing::Test {
protected:
    KxTest::FakeTextEncoding encoding;
    Korvex::Replacement<Korvex::TextEncoding> inForce{encoding};
};

/// Conversions in a locale's encoding.
class InLocale {
public:
    explicit InLocale(const char* locale) : encoding(locale) {}

private:
    KxTest::TestLocales locales;
    Korvex::LocaleTextEncoding encoding;
    Korvex::Replacement<Korvex::TextEncoding> inForce{encoding};
};

} // namespace

TEST_F(Conversion, WidensUpToTheZero) {
    for (const int length : {0, -1, 4, 5, 259}) {
        const Widened result = widen(std::string("abc\xE4\0xyz", 8), length);
        EXPECT_EQ(result.count, 4) << length;
        EXPECT_EQ(result.text(), L"abcä") << length;
        EXPECT_EQ(result.buffer[5], filler) << length;
    }
}

TEST_F(Conversion, WidensNoMoreThanTheLengthSays) {
    const Widened result = widen("abcdef", 3);
    EXPECT_EQ(result.count, 3);
    EXPECT_EQ(result.text(), L"abc");
}

TEST_F(Conversion, WidensAsciiOfEveryLength) {
    for (std::size_t length = 1; length <= 259; ++length) {
        std::string text(length, ' ');
        for (std::size_t i = 0; i < length; ++i)
            text[i] = static_cast<char>(1 + i % 127);
        const Widened result = widen(text);
        EXPECT_EQ(result.count, static_cast<int>(length));
        EXPECT_EQ(result.text(), std::wstring(text.begin(), text.end()));
    }
    EXPECT_EQ(encoding.conversions, 0) << "plain ASCII takes the short way";
}

TEST_F(Conversion, ANonAsciiByteIsNoticedAnywhere) {
    for (std::size_t length = 1; length <= 70; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'a');
            text[at] = '\xE4';
            std::wstring expected(length, L'a');
            expected[at] = L'ä';
            EXPECT_EQ(widen(text).text(), expected);
        }
}

TEST_F(Conversion, WidenRefusesBadArgumentsAndLeavesErrnoAlone) {
    std::array<wchar_t, 300> out{filler};
    errno = untouched;
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, nullptr, -1, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 260, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 0x7FFFFFFF, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -2, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "", -1, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\0abc", 4, out.data(), 260), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 260), 0) << "no asking for sizes";
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, out.data(), 0), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, out.data(), -5), 0);
    EXPECT_EQ(errno, untouched);
    EXPECT_EQ(out[0], filler);
}

TEST_F(Conversion, WidenIsNotLimitedByTheRoomStated) {
    std::array<wchar_t, 10> out{};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcdef", -1, out.data(), 1), 6);
    EXPECT_STREQ(out.data(), L"abcdef");
}

TEST_F(Conversion, WidenTakesTheFirst259BytesOfALongerText) {
    const std::string text = std::string(258, 'a') + "bcd";
    EXPECT_EQ(widen(text).text(), std::wstring(258, L'a') + L"b");
    EXPECT_EQ(widen(text, 0).count, 259);
    EXPECT_EQ(widen(text, 259).count, 259);
}

TEST_F(Conversion, WidenNeverReadsBehindTheText) {
    GuardedPage page;
    std::array<wchar_t, 300> out{};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, page.put("abc", 3), 3, out.data(), 260), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, page.put("abc", 4), -1, out.data(), 260), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, page.put("abc", 4), 259, out.data(), 260), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, page.put("ab\xE4", 3), 3, out.data(), 260), 3);
    const std::string longest(259, 'a');
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, page.put(longest.data(), 259), -1, out.data(), 260),
              259);
}

TEST_F(Conversion, WidenWritesNothingForMalformedText) {
    encoding.malformed = "\xFE";
    const Widened result = widen("abc\xFE");
    EXPECT_EQ(result.count, 0);
    EXPECT_TRUE(result.isUntouched());
}

TEST_F(Conversion, WidenWorksInPlace) {
    for (const std::string text : {"plain", "pl\xE4in"}) {
        const std::wstring expected = widen(text).text();
        std::array<wchar_t, 20> buffer{};
        for (std::size_t offset = 0; offset < 8; ++offset) {
            auto* bytes = reinterpret_cast<char*>(buffer.data()) + offset;
            std::strcpy(bytes, text.c_str());
            EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, bytes, -1, buffer.data(), 20), 5);
            EXPECT_EQ(buffer.data(), expected) << offset;
        }
    }
}

TEST_F(Conversion, CharactersBeyondTheBasicPlaneCountTwice) {
    encoding.characters['\xF0'] = L"\U0001F600";
    const Widened result = widen("a\xF0\xF0"
                                 "b");
    EXPECT_EQ(result.count, 6) << "UTF-16 units";
    EXPECT_EQ(result.text(), L"a\U0001F600\U0001F600b");
    for (std::size_t i = 4; i <= 6; ++i)
        EXPECT_EQ(result.buffer[i], L'\0') << i;
    EXPECT_EQ(result.buffer[7], filler);
}

TEST_F(Conversion, WidenRefusesMoreThan260Units) {
    encoding.characters['\xF0'] = L"\U0001F600";
    EXPECT_EQ(widen(std::string(130, '\xF0')).count, 260);
    EXPECT_EQ(widen(std::string(130, '\xF0') + "a").count, 0);
}

TEST_F(Conversion, ALeadingByteOrderMarkIsDropped) {
    encoding.characters['\xFE'] = L"\uFEFF";
    encoding.replacements[L'\uFEFF'] = "\xFE";
    EXPECT_EQ(widen("\xFE"
                    "a\xFE")
                  .text(),
              L"a\uFEFF");
    EXPECT_EQ(widen("\xFE"
                    "a\xFE")
                  .count,
              2);
    EXPECT_EQ(widen("\xFE\xFE").text(), L"\uFEFF");
    EXPECT_EQ(widen("\xFE").count, 0);
    EXPECT_EQ(narrow(L"\uFEFFa\uFEFF").bytes(), std::string("a\xFE\0", 3));
}

TEST_F(Conversion, AnEncodingThatDoesNotExtendAsciiConvertsAsciiToo) {
    encoding.ascii = false;
    encoding.characters['A'] = L"Z";
    encoding.replacements[L'Z'] = "A";
    EXPECT_EQ(widen("A").text(), L"Z");
    EXPECT_EQ(narrow(L"Z").bytes(), std::string("A\0", 2));
}

TEST_F(Conversion, NarrowConvertsTheZeroToo) {
    const Narrowed result = narrow(L"abc");
    EXPECT_EQ(result.bytes(), std::string("abc\0", 4));
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.buffer[4], '#') << "nothing is added";
    EXPECT_EQ(narrow(L"abc", 0).bytes(), std::string("abc\0", 4));
    EXPECT_EQ(narrow(L"ä").bytes(), std::string("\xE4\0", 2));
}

TEST_F(Conversion, NarrowSuppliesTheZeroToAnExplicitLength) {
    EXPECT_EQ(narrow(L"abcdef", 3).bytes(), std::string("abc\0", 4));
    using namespace std::string_literals;
    EXPECT_EQ(narrow(L"a\0b"s, 3).bytes(), "a\0b\0"s);
    GuardedPage page;
    const auto* text = reinterpret_cast<const wchar_t*>(page.put(L"abc", 3 * sizeof(wchar_t)));
    std::array<char, 8> out{};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, 3, out.data(), 8, nullptr, nullptr), 4);
    EXPECT_STREQ(out.data(), "abc");
}

TEST_F(Conversion, NarrowLeaves87ForBadArguments) {
    std::array<char, 8> out{'#'};
    const auto call = [&](const wchar_t* text, int length) {
        errno = untouched;
        return WideCharToMultiByte(CP_ACP, 0, text, length, out.data(), 8, nullptr, nullptr);
    };
    EXPECT_EQ(call(nullptr, -1), 0);
    EXPECT_EQ(errno, 87);
    EXPECT_EQ(call(L"abc", 260), 0);
    EXPECT_EQ(errno, 87);
    EXPECT_EQ(call(L"", -1), 0);
    EXPECT_EQ(errno, 87);
    EXPECT_EQ(call(L"", 0), 0);
    EXPECT_EQ(errno, 87);
    EXPECT_EQ(out[0], '#') << "so far nothing is written";
}

TEST_F(Conversion, NarrowLeaves1359ForOtherNegativeLengths) {
    for (const int length : {-2, -259, -0x7FFFFFFF}) {
        const Narrowed result = narrow(L"abc", length);
        EXPECT_EQ(result.count, 0);
        EXPECT_EQ(result.error, 1359);
        EXPECT_EQ(result.buffer[0], '\0');
    }
}

TEST_F(Conversion, NarrowGives31BytesAtMost) {
    EXPECT_EQ(narrow(std::wstring(30, L'a')).count, 31);
    EXPECT_EQ(narrow(std::wstring(30, L'ä')).count, 31);
    for (const std::size_t length : {31U, 40U, 259U, 260U, 5000U}) {
        for (const wchar_t letter : {L'a', L'ä'}) {
            const Narrowed result = narrow(std::wstring(length, letter));
            EXPECT_EQ(result.count, 0) << length;
            EXPECT_EQ(result.error, 1359) << length;
            EXPECT_EQ(result.buffer[0], '\0') << length;
        }
    }
    EXPECT_EQ(narrow(std::wstring(259, L'a'), 259).error, 1359);
}

TEST_F(Conversion, NarrowTellsTheSizeOnly) {
    errno = untouched;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(errno, 1359);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, nullptr, 64, nullptr, nullptr), 4);
    EXPECT_EQ(errno, 1359);
    for (const int room : {0, 3, -1}) {
        const Narrowed result = narrow(L"abc", -1, room);
        EXPECT_EQ(result.count, 4) << room;
        EXPECT_EQ(result.error, 1359) << room;
        EXPECT_EQ(result.buffer[0], '\0') << "the first byte all the same";
        EXPECT_EQ(result.buffer[1], '#') << room;
    }
    EXPECT_EQ(narrow(L"abc", -1, 4).error, 0);
}

TEST_F(Conversion, NarrowFailsForWhatCannotBeConverted) {
    for (const wchar_t* text : {L"a\u4E00", L"\U0001F600"}) {
        const Narrowed result = narrow(text);
        EXPECT_EQ(result.count, 0);
        EXPECT_EQ(result.error, 1359);
        EXPECT_EQ(result.buffer[0], '\0');
        EXPECT_EQ(result.buffer[1], '#');
    }
}

TEST_F(Conversion, NarrowNeverTouchesTheDefaultCharacterOrItsFlag) {
    BOOL used = 5;
    std::array<char, 8> out{};
    EXPECT_EQ(
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, L"\u4E00", -1, out.data(), 8, "!", &used),
        0);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"a", -1, out.data(), 8, "!", &used), 2);
    EXPECT_EQ(used, 5);
}

TEST_F(Conversion, NarrowWorksInPlace) {
    std::array<wchar_t, 8> buffer{L'ä', L'b', L'c'};
    auto* out = reinterpret_cast<char*>(buffer.data());
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, buffer.data(), -1, out, 32, nullptr, nullptr), 4);
    EXPECT_STREQ(out, "\xE4"
                      "bc");
}

TEST_F(Conversion, CodePagesAndFlagsAreIgnored) {
    for (const UINT page : {CP_ACP, CP_OEMCP, CP_UTF7, CP_UTF8, 12345U}) {
        std::array<wchar_t, 8> wide{};
        EXPECT_EQ(MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, "\xE4", -1, wide.data(), 8), 1);
        EXPECT_EQ(wide[0], L'ä');
        std::array<char, 8> bytes{};
        EXPECT_EQ(WideCharToMultiByte(page, WC_ERR_INVALID_CHARS, L"ä", -1, bytes.data(), 8,
                                      nullptr, nullptr),
                  2);
        EXPECT_EQ(bytes[0], '\xE4');
    }
}

TEST(ConversionInLocale, CutsUtf8TextNowhereButBetweenCharacters) {
    const InLocale locale("de_DE.UTF-8");
    EXPECT_EQ(widen("gr\xC3\xB6\xC3\x9F"
                    "er")
                  .text(),
              L"größer");
    EXPECT_EQ(widen("gr\xC3\xB6\xC3\x9F"
                    "er",
                    5)
                  .count,
              0)
        << "breaks off inside a character";
    EXPECT_EQ(widen(std::string(258, 'a') + "\xC3\xB6").count, 0);
    EXPECT_EQ(widen("\xEF\xBB\xBF"
                    "abc")
                  .text(),
              L"abc");
    EXPECT_EQ(widen("\xF0\x9F\x98\x80").count, 2);
    EXPECT_EQ(widen("\xC3(").count, 0);
    EXPECT_EQ(narrow(std::wstring(15, L'ä')).count, 31);
    EXPECT_EQ(narrow(std::wstring(15, L'ä') + L"a").count, 0);
    EXPECT_EQ(narrow(L"\xD800").error, 1359) << "a surrogate";
}

TEST(ConversionInLocale, ReplacesLooselyOrFails) {
    const InLocale locale("de_DE.ISO-8859-1");
    EXPECT_EQ(narrow(L"5 €").bytes(), std::string("5 EUR\0", 6));
    EXPECT_EQ(narrow(L"\u4E00").error, 1359);
    EXPECT_EQ(narrow(std::wstring(10, L'€')).count, 31);
    EXPECT_EQ(narrow(std::wstring(11, L'€')).count, 0);
}

TEST(ConversionInLocale, LookingItUpLeavesErrnoAlone) {
    const InLocale unknown("xx_XX.KXQTS-UNKNOWN");
    EXPECT_EQ(widen("abc").text(), L"abc") << "at the first use, and of text in no need of it";
}

TEST(ConversionInLocale, MultiByteTextStaysWithinItsLimits) {
    const InLocale locale("ja_JP.EUC-JP");
    EXPECT_EQ(widen("\xC6\xFC\xCB\xDC").text(), L"日本");
    EXPECT_EQ(widen("\xC6\xFC\xCB\xDC", 3).count, 0);
    EXPECT_EQ(narrow(std::wstring(15, L'日')).count, 31);
    EXPECT_EQ(narrow(std::wstring(16, L'日')).count, 0);
}

TEST(ConversionInLocale, TheUsersLocaleDecidesInAProgramThatNeverSetsOne) {
    const auto probe = [](const char* locale, const char* how, const char* text) {
        return KxTest::runProgram({KXQTS_TEXT_PROBE, how, text},
                                  {{"LOCPATH", KXQTS_TEST_LOCALES}, {"LC_ALL", locale}})
            .output;
    };
    EXPECT_EQ(probe("C", "widen", "61"), "1: 61\n");
    EXPECT_EQ(probe("C", "widen", "E4"), "0:\n");
    EXPECT_EQ(probe("de_DE.ISO-8859-1", "widen", "E4"), "1: e4\n");
    EXPECT_EQ(probe("de_DE.UTF-8", "widen", "C3A4"), "1: e4\n");
    EXPECT_EQ(probe("ja_JP.EUC-JP", "widen", "C6FC"), "1: 65e5\n");
    EXPECT_EQ(probe("en_US.IBM037", "widen", "C1"), "1: 41\n");
    EXPECT_EQ(probe("de_DE.KXQTS-UNKNOWN", "widen", "8A"), "1: e4\n");
    EXPECT_EQ(probe("C", "narrow", "20AC"), "4: 45 55 52 0\n");
    EXPECT_EQ(probe("ja_JP.EUC-JP", "narrow", "65E5"), "3: c6 fc 0\n");
}
