#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

using KxTest::Marked;

namespace {

using Buffer = Marked<char, 12>;

/// Formats that the compiler need not approve of.
const char* unchecked(const char* format) {
    return format;
}

} // namespace

class CrtFormat : public testing::Test {
protected:
    void SetUp() override { errno = 99; }
};

TEST_F(CrtFormat, PrintingSucceedsWithZeroAndNotTheLength) {
    Buffer buffer;
    EXPECT_EQ(sprintf_s(buffer.text, 4, "%d", 123), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(buffer.bytes(), "1230########");
}

TEST_F(CrtFormat, PrintingWhatDoesNotFitFailsAndWritesNothing) {
    Buffer buffer;
    EXPECT_EQ(sprintf_s(buffer.text, 3, "%d", 123), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(buffer.bytes(), "############");
}

TEST_F(CrtFormat, PrintingRefusesNullAndASizeOfZero) {
    Buffer buffer;
    EXPECT_EQ(sprintf_s(nullptr, 5, "x"), -1);
    EXPECT_EQ(errno, 22);
    errno = 0;
    EXPECT_EQ(sprintf_s(buffer.text, 0, "x"), -1);
    EXPECT_EQ(errno, 22);
    errno = 0;
    EXPECT_EQ(sprintf_s(buffer.text, 5, unchecked(nullptr), 0), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(buffer.bytes(), "############");
}

TEST_F(CrtFormat, PrintingAnEmptyTextNeedsRoomForTheTerminatorOnly) {
    Buffer buffer;
    EXPECT_EQ(sprintf_s(buffer.text, 1, "%s", ""), 0);
    EXPECT_EQ(buffer.bytes(), "0###########");
}

TEST_F(CrtFormat, ArgumentsMayLieInTheDestination) {
    Buffer buffer("ab");
    EXPECT_EQ(sprintf_s(buffer.text, 12, "<%s|%s>", buffer.text, buffer.text), 0);
    EXPECT_STREQ(buffer.text, "<ab|ab>");
}

TEST_F(CrtFormat, LongTextsAreNotBounded) {
    for (const size_t length : {1022u, 1023u, 1024u, 1025u, 100000u}) {
        const std::string text(length, 'x');
        std::vector<char> buffer(length + 1, '#');
        EXPECT_EQ(sprintf_s(buffer.data(), length, "%s", text.c_str()), -1) << length;
        EXPECT_EQ(buffer[0], '#') << length;
        EXPECT_EQ(sprintf_s(buffer.data(), length + 1, "%s", text.c_str()), 0) << length;
        EXPECT_EQ(text, buffer.data());
    }
}

TEST_F(CrtFormat, WhatCannotBePrintedFails) {
    Buffer buffer;
    const wchar_t notInTheLocale[] = L"\x20AC";
    EXPECT_EQ(sprintf_s(buffer.text, 12, "%ls", notInTheLocale), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(buffer.bytes(), "############");
}

TEST_F(CrtFormat, CountedPrintingKeepsOneCharacterLessThanItsCount) {
    Buffer buffer;
    EXPECT_EQ(_snprintf_s(buffer.text, 10, 3, "%s", "abcdef"), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(buffer.bytes(), "ab0#########");
    EXPECT_EQ(_snprintf_s(buffer.text, 10, 7, "%s", "abcdef"), 0);
    EXPECT_STREQ(buffer.text, "abcdef");
}

TEST_F(CrtFormat, CountedPrintingFailsWhenTheWholeTextDoesNotFit) {
    Buffer buffer;
    EXPECT_EQ(_snprintf_s(buffer.text, 6, 3, "%s", "abcdef"), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(_snprintf_s(buffer.text, 6, _TRUNCATE, "%s", "abcdef"), -1);
    EXPECT_EQ(buffer.bytes(), "############");
    EXPECT_EQ(_snprintf_s(buffer.text, 7, _TRUNCATE, "%s", "abcdef"), 0);
    EXPECT_STREQ(buffer.text, "abcdef");
}

TEST_F(CrtFormat, CountedPrintingRefusesNullAndSizesOfZero) {
    Buffer buffer;
    for (const int result : {_snprintf_s(nullptr, 5, 5, "x"), _snprintf_s(buffer.text, 0, 5, "x"),
                             _snprintf_s(buffer.text, 5, 0, "x"),
                             _snprintf_s(buffer.text, 5, 5, unchecked(nullptr), 0)})
        EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(buffer.bytes(), "############");
}

TEST_F(CrtFormat, CountedPrintingKeepsTheStartOfALongText) {
    const std::string text(5000, 'x');
    std::vector<char> buffer(6000, '#');
    for (const size_t count : {1u, 1024u, 1025u, 3000u}) {
        EXPECT_EQ(_snprintf_s(buffer.data(), buffer.size(), count, "%s", text.c_str()), 0);
        EXPECT_EQ(std::string(buffer.data()).size(), count - 1);
    }
}
