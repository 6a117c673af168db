#include <KxQts/support/text.h>

#include "common/memory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

/// Formats through the form that takes an argument list.
int formatList(QString* out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int length = formatWithWCharQString(*out, QString::fromLatin1(format), args);
    va_end(args);
    return length;
}

} // namespace

TEST(FormatText, TakesWideStringsAndNumbers) {
    QString out;
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%s=%d"), L"a", 5), 3);
    EXPECT_EQ(out, "a=5");
    EXPECT_EQ(formatList(&out, "%s=%d", L"ä€\U0001F600", 5), 5) << "wide characters";
    EXPECT_EQ(out, QStringLiteral("ä€\U0001F600=5"));
}

TEST(FormatText, TakesWideCharacters) {
    QString out;
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%c%c|"), L'€', L'x'), 3);
    EXPECT_EQ(out, QStringLiteral("€x|"));
}

TEST(FormatText, AnEmptyFormatIsRefused) {
    for (const QString& empty : {QString(), QStringLiteral("")}) {
        QString out = QStringLiteral("before");
        errno = 0;
        EXPECT_EQ(formatWithWCharQString(out, empty), -1);
        EXPECT_EQ(errno, 22);
        EXPECT_TRUE(out.isNull());
    }
}

TEST(FormatText, OnlyTheExactSequencesAreRewritten) {
    QString out;
    // With a width between, the argument is 8-bit text.
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%5s|%-3c|"), "ab", 'c'), 10);
    EXPECT_EQ(out, "   ab|c  |");
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%ls"), L"wide"), 4);
    EXPECT_EQ(out, "wide");
    // Capital letters are other sequences.
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%S%C"), L"wide", L'w'), 5);
    EXPECT_EQ(out, "widew");
}

TEST(FormatText, TheSecondHalfOfAnEscapedPercentSignIsRewrittenToo) {
    QString out;
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%%s %%c"), 0), 7);
    EXPECT_EQ(out, "%ls %lc");
}

TEST(FormatText, FormatsBeyondLatin1StayAsTheyAre) {
    QString out;
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("€\U0001F600%s%%"), L"x"), 4);
    EXPECT_EQ(out, QStringLiteral("€\U0001F600x%"));
}

TEST(FormatText, ASinglePlainNumberIsNoArgumentList) {
    QString out;
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%d"), 0), 1);
    EXPECT_EQ(out, "0");
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%lld"), 1LL << 40), 13);
    EXPECT_EQ(out, "1099511627776");
    EXPECT_GT(formatWithWCharQString(out, QStringLiteral("%p"), nullptr), 0);
}

TEST(FormatText, HoldsUpTo2047Characters) {
    QString out;
    const std::wstring longest(2047, L'x');
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%s"), longest.c_str()), 2047);
    EXPECT_EQ(out, QString(2047, u'x'));
    const std::wstring longer(2048, L'x');
    EXPECT_LT(formatWithWCharQString(out, QStringLiteral("%s"), longer.c_str()), 0);
    EXPECT_TRUE(out.isNull());
}

TEST(FormatText, AnEmptyResultIsTheNullString) {
    QString out = QStringLiteral("before");
    EXPECT_EQ(formatWithWCharQString(out, QStringLiteral("%s"), L""), 0);
    EXPECT_TRUE(out.isNull());
}

TEST(FormatText, WhatCannotBeFormattedGivesTheNullString) {
    QString out = QStringLiteral("before");
    const char* const noText = "\xFF"; // const: an argument list may be a char*
    EXPECT_LT(formatWithWCharQString(out, QStringLiteral("%5s|"), noText), 0);
    EXPECT_TRUE(out.isNull());
}

TEST(FormatText, TheFormatMustBeAnotherString) {
    QString both = QStringLiteral("%d");
    EXPECT_EQ(formatWithWCharQString(both, both, 1), -1);
    EXPECT_TRUE(both.isNull());
}

TEST(FormatText, WithoutMemoryFailsWith12) {
    for (const int after : {0, 1}) {
        QString out = QStringLiteral("before");
        const QString format = QStringLiteral("%d");
        errno = 0;
        {
            const KxTest::FailingAllocation failing(after);
            EXPECT_EQ(formatWithWCharQString(out, format, 1), -1) << after;
        }
        EXPECT_EQ(errno, 12) << after;
        EXPECT_TRUE(out.isNull()) << after;
    }
}
