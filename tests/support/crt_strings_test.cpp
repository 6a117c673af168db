#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>

using KxTest::as;
using KxTest::Marked;

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto append = strcat_s;
    static constexpr auto copy = strcpy_s;
    static constexpr auto copyFirst = strncpy_s;
    static constexpr auto upper = _strupr;
    static constexpr auto upperChecked = _strupr_s;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto append = wcscat_s;
    static constexpr auto copy = wcscpy_s;
    static constexpr auto copyFirst = wcsncpy_s;
    static constexpr auto upper = _wcsupr;
    static constexpr auto upperChecked = _wcsupr_s;
};

/// No number that a call here leaves in errno.
constexpr int untouched = 99;

} // namespace

template <class Form>
class CrtStrings : public testing::Test {
protected:
    using Character = typename Form::Char;
    using Buffer = Marked<Character, 12>;

    void SetUp() override { errno = untouched; }
};

using Forms = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CrtStrings, Forms);

TYPED_TEST(CrtStrings, CopyNeedsRoomForTheTerminator) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer;
    EXPECT_EQ(TypeParam::copy(buffer.text, 4, as<Char>("abcd").c_str()), 34);
    EXPECT_EQ(buffer.bytes(), "############");
    EXPECT_EQ(TypeParam::copy(buffer.text, 5, as<Char>("abcd").c_str()), 0);
    EXPECT_EQ(buffer.bytes(), "abcd0#######");
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, CopyRefusesNullAndASizeOfZero) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer("old");
    EXPECT_EQ(TypeParam::copy(nullptr, 5, as<Char>("a").c_str()), 22);
    EXPECT_EQ(TypeParam::copy(buffer.text, 5, nullptr), 22);
    EXPECT_EQ(TypeParam::copy(buffer.text, 0, as<Char>("").c_str()), 34);
    EXPECT_EQ(buffer.bytes(), "old0########");
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, AppendNeedsRoomForBothTextsAndTheTerminator) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer("ab");
    EXPECT_EQ(TypeParam::append(buffer.text, 5, as<Char>("cde").c_str()), 34);
    EXPECT_EQ(buffer.bytes(), "ab0#########");
    EXPECT_EQ(TypeParam::append(buffer.text, 6, as<Char>("cde").c_str()), 0);
    EXPECT_EQ(buffer.bytes(), "abcde0######");
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, AppendRefusesNull) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer("ab");
    EXPECT_EQ(TypeParam::append(nullptr, 5, as<Char>("a").c_str()), 22);
    EXPECT_EQ(TypeParam::append(buffer.text, 5, nullptr), 22);
    EXPECT_EQ(buffer.bytes(), "ab0#########");
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, AppendToATextThatHasNoTerminatorReadsNothingBehindItsSize) {
    using Char = typename TypeParam::Char;
    const std::basic_string<Char> full = as<Char>("abcd");
    const std::unique_ptr<Char[]> buffer(new Char[4]);
    full.copy(buffer.get(), 4);
    EXPECT_EQ(TypeParam::append(buffer.get(), 4, as<Char>("").c_str()), 34);
}

TYPED_TEST(CrtStrings, PartialCopyTestsTheLengthOfTheWholeSource) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer;
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 10, as<Char>("abcdefghijk").c_str(), 3), 34);
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 10, as<Char>("abcdefghij").c_str(), 3), 34);
    EXPECT_EQ(buffer.bytes(), "############");
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 10, as<Char>("abcdefghi").c_str(), 3), 0);
    EXPECT_EQ(buffer.bytes(), "abc#########") << "no terminator is added";
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, PartialCopyFillsUpWithZeros) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer;
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 10, as<Char>("ab").c_str(), 5), 0);
    EXPECT_EQ(buffer.bytes(), "ab000#######");
}

TYPED_TEST(CrtStrings, PartialCopyRefusesNullACountOfZeroAndOneAboveTheSize) {
    using Char = typename TypeParam::Char;
    typename TestFixture::Buffer buffer;
    const std::basic_string<Char> source = as<Char>("ab");
    EXPECT_EQ(TypeParam::copyFirst(nullptr, 5, source.c_str(), 1), 22);
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 5, nullptr, 1), 22);
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 5, source.c_str(), 0), 22);
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 5, source.c_str(), 6), 34);
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 5, source.c_str(), _TRUNCATE), 34);
    EXPECT_EQ(buffer.bytes(), "############");
    EXPECT_EQ(TypeParam::copyFirst(buffer.text, 5, source.c_str(), 5), 0);
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, UpperStopsAtTheTerminator) {
    typename TestFixture::Buffer buffer("aB1z");
    buffer.text[5] = 'x';
    EXPECT_EQ(TypeParam::upper(buffer.text), buffer.text);
    EXPECT_EQ(buffer.bytes(), "AB1Z0x######");
    EXPECT_EQ(TypeParam::upper(nullptr), nullptr);
    EXPECT_EQ(errno, untouched);
}

TYPED_TEST(CrtStrings, CheckedUpperRefusesNullAndATextLongerThanItsSize) {
    typename TestFixture::Buffer buffer("abc");
    EXPECT_EQ(TypeParam::upperChecked(nullptr, 5), 22);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(TypeParam::upperChecked(buffer.text, 2), 34);
    EXPECT_EQ(errno, 34);
    EXPECT_EQ(buffer.bytes(), "abc0########");
}

TYPED_TEST(CrtStrings, CheckedUpperGoesOnUntilItHasMetOneZeroMoreThanItsSize) {
    typename TestFixture::Buffer buffer("ab");
    const std::string_view behind = "c_d_e_f_g";
    std::copy(behind.begin(), behind.end(), buffer.text + 3);
    buffer.text[4] = buffer.text[6] = buffer.text[8] = buffer.text[10] = 0;
    ASSERT_EQ(buffer.bytes(), "ab0c0d0e0f0g");
    EXPECT_EQ(TypeParam::upperChecked(buffer.text, 2), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(buffer.bytes(), "AB0C0D0e0f0g") << "a text as long as its size is taken, too";
}

TEST(CrtUpper, WideTextFollowsTheLocale) {
    const std::string before = setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    wchar_t text[] = L"aä€";
    EXPECT_STREQ(_wcsupr(text), L"AÄ€");
    setlocale(LC_CTYPE, before.c_str());
}
