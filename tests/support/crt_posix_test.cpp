#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <string>

namespace fs = std::filesystem;

using KxTest::as;
using KxTest::shown;

namespace {

/// The program's locale for a scope.
class Locale {
public:
    explicit Locale(const char* name) : before(setlocale(LC_ALL, nullptr)) {
        EXPECT_NE(setlocale(LC_ALL, name), nullptr) << name;
    }
    ~Locale() { setlocale(LC_ALL, before.c_str()); }
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;

private:
    std::string before;
};

/// An environment variable for a scope.
class Variable {
public:
    Variable(std::string named, const std::string& value) : name(std::move(named)) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    ~Variable() { unsetenv(name.c_str()); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    std::string name;
};

constexpr int untouched = 99;

/// Bytes of the longest text that the calls convert.
constexpr size_t longest = 259;

} // namespace

class CrtCompare : public testing::Test {
protected:
    void SetUp() override { errno = untouched; }
    void TearDown() override { EXPECT_EQ(errno, untouched); }
};

TEST_F(CrtCompare, CaseDoesNotMatter) {
    EXPECT_EQ(_wcsicmp(L"abC1", L"ABc1"), 0);
    EXPECT_EQ(_wcsicmp(L"", L""), 0);
    EXPECT_LT(_wcsicmp(L"ab", L"AC"), 0);
    EXPECT_GT(_wcsicmp(L"B", L"a"), 0);
    EXPECT_LT(_wcsicmp(L"a", L"AB"), 0);
}

TEST_F(CrtCompare, InAUtf8LocaleOnlyAsciiLettersLoseTheirCase) {
    {
        const Locale locale("C.UTF-8");
        EXPECT_GT(_wcsicmp(L"Zür", L"zÜR"), 0);
        EXPECT_EQ(_wcsicmp(L"ZüR", L"zür"), 0);
    }
    errno = untouched; // the locale's scope leaves a number
}

TEST_F(CrtCompare, TextThatTheLocaleCannotExpressIsStillTold) {
    EXPECT_EQ(_wcsicmp(L"A€", L"a€"), 0);
    EXPECT_NE(_wcsicmp(L"€a", L"€b"), 0);
    EXPECT_NE(_wcsicmp(L"a", L"a€"), 0);
    EXPECT_NE(_wcsicmp(L"a€", L"a"), 0);
}

TEST_F(CrtCompare, LongTextsAreComparedToTheirEnd) {
    for (const size_t length : {longest - 1, longest, longest + 1, size_t{100000}}) {
        const std::wstring lower(length, L'x');
        const std::wstring upper(length, L'X');
        EXPECT_EQ(_wcsicmp(lower.c_str(), upper.c_str()), 0) << length;
        EXPECT_LT(_wcsicmp((lower + L"a").c_str(), (upper + L"B").c_str()), 0) << length;
        EXPECT_GT(_wcsicmp((lower + L"a").c_str(), upper.c_str()), 0) << length;
    }
}

TEST(CrtCompareNull, NullIsRefused) {
    for (const auto& [a, b] : {std::pair<const wchar_t*, const wchar_t*>(nullptr, L"a"),
                               {L"a", nullptr},
                               {nullptr, nullptr},
                               {L"€", nullptr}}) {
        errno = 0;
        EXPECT_EQ(_wcsicmp(a, b), INT_MAX);
        EXPECT_EQ(errno, 22);
    }
}

TEST(CrtRemoveDirectory, RemovesAnEmptyDirectory) {
    const Locale locale("C.UTF-8");
    fs::create_directory("ordner-ä€");
    EXPECT_EQ(_wrmdir(L"ordner-ä€"), 0);
    EXPECT_FALSE(fs::exists("ordner-ä€"));
}

TEST(CrtRemoveDirectory, LeavesWhatRmdirSays) {
    EXPECT_EQ(_wrmdir(L"missing"), -1);
    EXPECT_EQ(errno, ENOENT);
    fs::create_directories("full/inside");
    EXPECT_EQ(_wrmdir(L"full"), -1);
    EXPECT_EQ(errno, ENOTEMPTY);
    fs::remove_all("full");
}

TEST(CrtRemoveDirectory, RefusesWhatCannotBeConverted) {
    EXPECT_EQ(_wrmdir(L"a€"), -1);
    EXPECT_EQ(errno, EILSEQ);
    EXPECT_EQ(_wrmdir(nullptr), -1);
    EXPECT_EQ(errno, 22);
}

TEST(CrtRemoveDirectory, NeverRemovesADirectoryWhosePathIsTheStartOfALongOne) {
    const std::string path = std::string(100, 'd') + "/" + std::string(longest - 101, 'e');
    fs::create_directories(path);
    EXPECT_EQ(_wrmdir(as<wchar_t>(path + "e").c_str()), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_TRUE(fs::exists(path));
    EXPECT_EQ(_wrmdir(as<wchar_t>(path).c_str()), 0);
    EXPECT_FALSE(fs::exists(path));
    fs::remove_all(std::string(100, 'd'));
}

TEST(CrtEnvironment, TellsAVariable) {
    const Locale locale("C.UTF-8");
    const Variable variable("KXQTS_ÄHNLICH", "wert-ß");
    const Variable empty("KXQTS_EMPTY", "");
    EXPECT_STREQ(_wgetenv(L"KXQTS_ÄHNLICH"), L"wert-ß");
    EXPECT_STREQ(_wgetenv(L"KXQTS_EMPTY"), L"");
}

TEST(CrtEnvironment, AMissingVariableIsNull) {
    errno = untouched;
    EXPECT_EQ(_wgetenv(L"KXQTS_MISSING"), nullptr);
    EXPECT_EQ(errno, untouched);
    EXPECT_EQ(_wgetenv(nullptr), nullptr);
    EXPECT_EQ(errno, 22);
}

TEST(CrtEnvironment, WhatCannotBeConvertedIsNull) {
    const Variable variable("KXQTS_BYTES", "a\xFF");
    EXPECT_EQ(_wgetenv(L"KXQTS_€"), nullptr);
    EXPECT_EQ(errno, EILSEQ);
    const Locale locale("C.UTF-8");
    EXPECT_EQ(_wgetenv(L"KXQTS_BYTES"), nullptr);
    EXPECT_EQ(errno, EILSEQ);
}

TEST(CrtEnvironment, ANameThatIsTooLongIsNotCutOff) {
    const std::string name(longest, 'N');
    const Variable variable(name, "value");
    EXPECT_STREQ(_wgetenv(as<wchar_t>(name).c_str()), L"value");
    EXPECT_EQ(_wgetenv(as<wchar_t>(name + "N").c_str()), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST(CrtEnvironment, AtMost260CharactersOfAValueAreKept) {
    for (const size_t length : {259u, 260u, 261u, 5000u}) {
        const Variable variable("KXQTS_LONG", std::string(length, 'v'));
        EXPECT_EQ(std::wstring(_wgetenv(L"KXQTS_LONG")).size(), std::min<size_t>(length, 260));
    }
}

TEST(CrtTimeText, IsTheTextOfCtime) {
    for (const time_t time : {time_t{0}, time_t{1234567890}, std::time(nullptr)}) {
        const std::string expected = std::ctime(&time);
        EXPECT_EQ(shown(_wctime(&time)), expected);
        EXPECT_EQ(expected.size(), 25u);
    }
}

TEST(CrtTimeText, ATimeWithoutTextAndNullAreNull) {
    const time_t latest = std::numeric_limits<time_t>::max();
    const bool hasText = std::ctime(&latest) != nullptr; // as it has where a time has 32 bits
    EXPECT_EQ(_wctime(&latest) != nullptr, hasText);
    EXPECT_EQ(_wctime(nullptr), nullptr);
    EXPECT_EQ(errno, 22);
}

TEST(CrtTimeText, SharesItsBufferWithTheEnvironment) {
    const Variable variable("KXQTS_LONG", std::string(100, 'v'));
    const wchar_t* value = _wgetenv(L"KXQTS_LONG");
    const time_t time = 0;
    const wchar_t* text = _wctime(&time);
    EXPECT_EQ(value, text);
    EXPECT_EQ(std::wstring(text).size(), 25u) << "nothing is left of the longer text";
    EXPECT_EQ(_wgetenv(L"KXQTS_LONG"), text);
    EXPECT_EQ(shown(text), std::string(100, 'v')) << "each call overwrites the last result";
}

TEST(CrtMultibyteDeathTest, LeadByteTestEndsTheProcessByTheAssertionThatCallersKnow) {
    EXPECT_EXIT(_ismbblead('a'), testing::KilledBySignal(SIGABRT),
                "kx_strx:744: .*Assertion `false' failed");
    EXPECT_EXIT(_ismbblead(0), testing::KilledBySignal(SIGABRT), "kx_strx:744: ");
}
