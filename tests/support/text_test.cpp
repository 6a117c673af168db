#include <KxQts/support/text.h>

#include "common/memory.h"
#include "common/memorysearch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

using KxTest::bytesAt;
using KxTest::FailingAllocation;

namespace {

const QString secret = QStringLiteral("a secret of some length that nobody shall ever see again");

/// How much of a buffer that was freed is looked at: its beginning belongs to the heap by then.
constexpr std::size_t usedByTheHeap = 32;

std::string rest(const void* buffer, std::size_t size) {
    return bytesAt(static_cast<const char*>(buffer) + usedByTheHeap, size - usedByTheHeap);
}

std::string zeros(std::size_t size) {
    return std::string(size - usedByTheHeap, '\0');
}

} // namespace

static_assert(std::is_same_v<WCString, Korvex::WCString>);
static_assert(std::is_same_v<WWString, Korvex::WWString>);
static_assert(offsetof(WCString, str) == 0 && offsetof(WCString, size) == sizeof(char*));
static_assert(offsetof(WWString, str) == 0 && offsetof(WWString, size) == sizeof(wchar_t*));
static_assert(sizeof(WCString::size) == 4 && sizeof(WWString::size) == 4);

TEST(WCString, IsAnEightBitCopy) {
    const WCString string(QStringLiteral("gr\u00F6\u00DFer"));
    EXPECT_STREQ(string, "gr\xF6\xDF"
                         "er");
    EXPECT_EQ(string.size, 7U);
    EXPECT_NE(string.str, WCString::sEmptyString);
}

TEST(WCString, CharactersBeyondLatin1BecomeQuestionMarks) {
    const WCString string(QStringLiteral("5 \u20AC"));
    EXPECT_STREQ(string, "5 ?");
    EXPECT_EQ(string.size, 4U);
}

TEST(WCString, KeepsZerosInside) {
    const WCString string(QString::fromLatin1("a\0b", 3));
    EXPECT_EQ(string.size, 4U);
    EXPECT_EQ(std::memcmp(string.str, "a\0b", 4), 0);
}

TEST(WCString, OfAnEmptyStringIsTheSharedEmptyText) {
    for (const QString& empty : {QString(), QStringLiteral("")}) {
        const WCString string(empty);
        EXPECT_EQ(string.str, WCString::sEmptyString);
        EXPECT_EQ(string.size, 1U);
        EXPECT_STREQ(string, "");
    }
    const WCString none;
    EXPECT_EQ(none.str, WCString::sEmptyString);
    EXPECT_EQ(none.size, 1U);
}

TEST(WCString, WithoutMemoryIsTheSharedEmptyText) {
    const FailingAllocation failing;
    const WCString string(secret);
    EXPECT_EQ(string.str, WCString::sEmptyString);
    EXPECT_EQ(string.size, 1U);
}

TEST(WCString, IsWipedBeforeItsMemoryIsFreed) {
    const char* buffer = nullptr;
    std::size_t size = 0;
    {
        const WCString string(secret);
        buffer = string.str;
        size = string.size;
        ASSERT_EQ(rest(buffer, size), std::string(buffer, size).substr(usedByTheHeap));
    }
    EXPECT_EQ(rest(buffer, size), zeros(size));
}

TEST(WCString, IsTheOnlyCopyAndLeavesNone) {
    const KxTest::UnwrittenText text(40);
    QString string;
    text.writeTo(string);
    {
        const WCString copy(string);
        EXPECT_EQ(copy.size, 41U);
        EXPECT_EQ(text.occurrences(sizeof(char)), 1U);
    }
    EXPECT_EQ(text.occurrences(sizeof(char)), 0U);
}

TEST(WWString, IsAWideCopy) {
    const WWString string(QStringLiteral("gr\u00F6\u00DFer"));
    EXPECT_STREQ(string, L"größer");
    EXPECT_EQ(string.size, 7 * 4U);
}

TEST(WWString, CountsUnitsWhereCharactersAreFewer) {
    const WWString string(QStringLiteral("a\U0001F600"));
    EXPECT_STREQ(string, L"a\U0001F600");
    EXPECT_EQ(string.size, 4 * 4U) << "three UTF-16 units and the zero";
    EXPECT_EQ(string.str[3], L'\0');
}

TEST(WWString, OfAnEmptyStringIsTheSharedEmptyText) {
    for (const QString& empty : {QString(), QStringLiteral("")}) {
        const WWString string(empty);
        EXPECT_EQ(string.str, WWString::sEmptyString);
        EXPECT_EQ(string.size, 0U) << "unlike its 8-bit sister";
        EXPECT_STREQ(string, L"");
    }
}

TEST(WWString, WithoutMemoryIsTheSharedEmptyText) {
    const FailingAllocation failing;
    const WWString string(secret);
    EXPECT_EQ(string.str, WWString::sEmptyString);
    EXPECT_EQ(string.size, 0U);
}

TEST(WWString, MayHaveItsTextTakenAway) {
    WWString string(secret);
    delete[] string.str;
    string.str = nullptr;
}

TEST(DeepClean, OverwritesAByteArray) {
    QByteArray array("secret\0and more", 15);
    const char* buffer = array.constData();
    KXQByteArrayDeepClean(array);
    EXPECT_EQ(array.size(), 15);
    EXPECT_EQ(array.constData(), buffer) << "no copy was wiped in its place";
    EXPECT_EQ(array, QByteArray(15, '\0'));
}

TEST(DeepClean, LeavesWhatOthersHoldOfAByteArray) {
    QByteArray array("secret");
    const QByteArray other = array;
    KXQByteArrayDeepClean(array);
    EXPECT_EQ(array, QByteArray(6, '\0'));
    EXPECT_EQ(other, "secret");
    static const char constant[] = "constant";
    QByteArray raw = QByteArray::fromRawData(constant, 8);
    KXQByteArrayDeepClean(raw);
    EXPECT_EQ(raw, QByteArray(8, '\0'));
    EXPECT_STREQ(constant, "constant");
}

TEST(DeepClean, OverwritesAString) {
    QString string = QString::fromLatin1("secret");
    const QChar* buffer = string.constData();
    KXQStringDeepClean(string);
    EXPECT_EQ(string.constData(), buffer) << "no copy was wiped in its place";
    EXPECT_EQ(string, QString(6, QChar(0)));
}

TEST(DeepClean, StopsAtTheFirstZeroOfAString) {
    QString string = QString::fromLatin1("secret\0kept", 11);
    KXQStringDeepClean(string);
    EXPECT_EQ(string, QString(7, QChar(0)) + QStringLiteral("kept"));
}

TEST(DeepClean, LeavesWhatOthersHoldOfAString) {
    QString string = QString::fromLatin1("secret");
    const QString other = string;
    KXQStringDeepClean(string);
    EXPECT_EQ(string, QString(6, QChar(0)));
    EXPECT_EQ(other, "secret");
    QString literal = QStringLiteral("literal");
    KXQStringDeepClean(literal);
    EXPECT_EQ(literal, QString(7, QChar(0)));
    EXPECT_EQ(QStringLiteral("literal"), "literal");
}

TEST(DeepClean, LeavesNothingInMemoryThatIsFreed) {
    QString string = secret;
    string.detach();
    const QChar* buffer = string.constData();
    const auto size = static_cast<std::size_t>(string.size()) * sizeof(QChar);
    ASSERT_NE(rest(buffer, size), zeros(size));
    KXQStringDeepCleanAndRelease(string);
    EXPECT_TRUE(string.isNull());
    EXPECT_EQ(rest(buffer, size), zeros(size));
}

TEST(DeepClean, ReleasesEveryString) {
    for (QString string : {QString(), QStringLiteral(""), QString::fromLatin1("secret")}) {
        KXQStringDeepCleanAndRelease(string);
        EXPECT_TRUE(string.isNull());
    }
}

TEST(DeepClean, TakesWhatIsEmpty) {
    QByteArray noBytes;
    KXQByteArrayDeepClean(noBytes);
    EXPECT_TRUE(noBytes.isNull());
    QString nothing;
    KXQStringDeepClean(nothing);
    EXPECT_TRUE(nothing.isNull());
    QString empty = QStringLiteral("");
    KXQStringDeepClean(empty);
    EXPECT_TRUE(empty.isEmpty());
}

namespace {

struct Record {
    int count;
    char tail[1];
};

// Out of the compiler's sight, which pairs these operators by their names.
[[gnu::noinline]] void giveBack(void* memory) {
    __asm__("" : "+r"(memory));
    ::operator delete[](memory);
}

} // namespace

TEST(SizedNew, GivesMemoryForAStructureWithATail) {
    constexpr std::size_t extra = 100;
    auto* record = new (extra) Record;
    std::memset(record->tail, 'x', extra);
    giveBack(record);
    void* memory = ::operator new(sizeof(Record), extra);
    std::memset(memory, 'x', sizeof(Record) + extra);
    giveBack(memory);
}

TEST(SizedNew, GivesNullWhenThereIsNotSoMuch) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(::operator new (most, std::size_t{1}), nullptr);
    EXPECT_EQ(::operator new (std::size_t{2}, most), nullptr);
    const FailingAllocation failing;
    EXPECT_EQ(::operator new (std::size_t{8}, std::size_t{8}), nullptr);
    EXPECT_EQ(new (std::size_t{8}) Record, nullptr) << "no constructor runs on it";
}
