#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>

using KxTest::Marked;
using KxTest::shown;

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto fromInt = _itoa;
    static constexpr auto fromLong = _ltoa;
    static constexpr auto fromUnsigned = _ultoa;
    static constexpr auto fromIntChecked = _itoa_s;
    static constexpr auto fromLongChecked = _ltoa_s;
    static constexpr auto fromUnsignedChecked = _ultoa_s;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto fromInt = _itow;
    static constexpr auto fromLong = _ltow;
    static constexpr auto fromUnsigned = _ultow;
    static constexpr auto fromIntChecked = _itow_s;
    static constexpr auto fromLongChecked = _ltow_s;
    static constexpr auto fromUnsignedChecked = _ultow_s;
};

constexpr int untouched = 99;

} // namespace

template <class Form>
class CrtNumbers : public testing::Test {
protected:
    using Character = typename Form::Char;

    void SetUp() override { errno = untouched; }
    void TearDown() override { EXPECT_EQ(errno, untouched); }

    std::string fromInt(int value, int base) { return shown(Form::fromInt(value, room, base)); }
    std::string fromLong(long value, int base) { return shown(Form::fromLong(value, room, base)); }
    std::string fromUnsigned(unsigned long value, int base) {
        return shown(Form::fromUnsigned(value, room, base));
    }

    Character room[70];
};

using Forms = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CrtNumbers, Forms);

TYPED_TEST(CrtNumbers, OnlyBaseTenHasAMinusSign) {
    EXPECT_EQ(this->fromInt(-5, 10), "-5");
    EXPECT_EQ(this->fromInt(-1, 16), "ffffffff");
    EXPECT_EQ(this->fromLong(-5, 10), "-5");
    EXPECT_EQ(this->fromLong(-1, 16), "ffffffff") << "32 bits, however wide a long is";
    EXPECT_EQ(this->fromInt(-1, 2), std::string(32, '1'));
    EXPECT_EQ(this->fromInt(-2, 36), "1z141z2");
}

TYPED_TEST(CrtNumbers, DigitsAboveNineAreLowerCaseLetters) {
    EXPECT_EQ(this->fromInt(10, 16), "a");
    EXPECT_EQ(this->fromInt(35, 36), "z");
    EXPECT_EQ(this->fromInt(0, 10), "0");
    EXPECT_EQ(this->fromUnsigned(0xDEADBEEFul, 16), "deadbeef");
    EXPECT_EQ(this->fromUnsigned(4294967295ul, 10), "4294967295");
}

TYPED_TEST(CrtNumbers, TheSmallestValuesAreWritten) {
    EXPECT_EQ(this->fromInt(INT_MIN, 10), "-2147483648");
    EXPECT_EQ(this->fromInt(INT_MIN, 16), "80000000");
    EXPECT_EQ(this->fromLong(INT_MIN, 16), "80000000");
    EXPECT_EQ(this->fromLong(LONG_MIN, 10), std::to_string(LONG_MIN));
    EXPECT_EQ(this->fromUnsigned(ULONG_MAX, 10), std::to_string(ULONG_MAX));
}

TYPED_TEST(CrtNumbers, WideLongsAreWhole) {
    const size_t digits = 2 * sizeof(long);
    EXPECT_EQ(this->fromLong(LONG_MIN, 16), "8" + std::string(digits - 1, '0'));
    EXPECT_EQ(this->fromLong(LONG_MAX, 16), "7" + std::string(digits - 1, 'f'));
    EXPECT_EQ(this->fromUnsigned(ULONG_MAX, 2), std::string(8 * sizeof(long), '1'));
}

TYPED_TEST(CrtNumbers, PlainFormsReturnTheBuffer) {
    EXPECT_EQ(TypeParam::fromInt(1, this->room, 10), this->room);
    EXPECT_EQ(TypeParam::fromLong(1, this->room, 10), this->room);
    EXPECT_EQ(TypeParam::fromUnsigned(1, this->room, 10), this->room);
}

TYPED_TEST(CrtNumbers, CheckedFormsReturnZero) {
    EXPECT_EQ(TypeParam::fromIntChecked(-12, this->room, 4, 10), 0);
    EXPECT_EQ(shown(this->room), "-12");
    EXPECT_EQ(TypeParam::fromLongChecked(-1, this->room, 9, 16), 0);
    EXPECT_EQ(shown(this->room), "ffffffff");
    EXPECT_EQ(TypeParam::fromUnsignedChecked(10, this->room, 3, 10), 0);
    EXPECT_EQ(shown(this->room), "10");
}

TYPED_TEST(CrtNumbers, CheckedFormsRefuseNullNoRoomAndBasesThatAreNone) {
    using Char = typename TypeParam::Char;
    Marked<Char, 4> buffer;
    EXPECT_EQ(TypeParam::fromIntChecked(1, nullptr, 4, 10), 22);
    EXPECT_EQ(TypeParam::fromLongChecked(1, nullptr, 4, 10), 22);
    EXPECT_EQ(TypeParam::fromUnsignedChecked(1, nullptr, 4, 10), 22);
    EXPECT_EQ(TypeParam::fromIntChecked(1, buffer.text, 0, 10), 22);
    for (const int base : {-10, 0, 1, 37})
        EXPECT_EQ(TypeParam::fromIntChecked(1, buffer.text, 4, base), 22) << base;
    EXPECT_EQ(buffer.bytes(), "####");
    for (const int base : {2, 36})
        EXPECT_EQ(TypeParam::fromIntChecked(1, buffer.text, 4, base), 0) << base;
}

TYPED_TEST(CrtNumbers, WhatDoesNotFitLeavesItsLastDigitsInReverse) {
    using Char = typename TypeParam::Char;
    Marked<Char, 4> buffer;
    EXPECT_EQ(TypeParam::fromUnsignedChecked(10, buffer.text, 2, 10), 22);
    EXPECT_EQ(buffer.bytes(), "01##");
    EXPECT_EQ(TypeParam::fromIntChecked(12345, buffer.text, 3, 10), 22);
    EXPECT_EQ(buffer.bytes(), "543#");
    EXPECT_EQ(TypeParam::fromIntChecked(-67, buffer.text, 3, 10), 22);
    EXPECT_EQ(buffer.bytes(), "76-#");
    EXPECT_EQ(TypeParam::fromIntChecked(0, buffer.text, 1, 10), 22);
    EXPECT_EQ(buffer.bytes(), "06-#");
}

TEST(CrtNumbersDeathTest, ABaseOfZeroIsADivisionByZero) {
    char buffer[70];
    EXPECT_DEATH(_itoa(1, buffer, 0), "");
}
