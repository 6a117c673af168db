#include "support/crt_forms.h"

#include <KxQts/winapi/crt.h>
#include <KxQts/winapi/types.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>

using KxTest::Marked;
using KxTest::shown;

namespace {

struct Narrow {
    using Char = char;
    static constexpr auto date = _strdate;
    static constexpr auto time = _strtime;
    static constexpr auto dateChecked = _strdate_s;
    static constexpr auto timeChecked = _strtime_s;
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto date = _wstrdate;
    static constexpr auto time = _wstrtime;
    static constexpr auto dateChecked = _wstrdate_s;
    static constexpr auto timeChecked = _wstrtime_s;
};

/// The time zone of the process for a scope.
class TimeZone {
public:
    explicit TimeZone(const char* name) {
        if (const char* value = std::getenv("TZ"))
            before = value;
        else
            wasSet = false;
        setenv("TZ", name, 1);
        tzset();
    }
    ~TimeZone() {
        if (wasSet)
            setenv("TZ", before.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::string before;
    bool wasSet = true;
};

std::string localNow(const char* format) {
    const time_t now = std::time(nullptr);
    tm fields{};
    localtime_r(&now, &fields);
    char text[40];
    std::strftime(text, sizeof text, format, &fields);
    return text;
}

/// What a call tells while the clock shows one and the same text before and after it.
template <class Call>
void expectNow(const char* format, Call call) {
    for (;;) {
        const std::string before = localNow(format);
        const std::string told = call();
        if (before == localNow(format)) {
            EXPECT_EQ(told, before);
            return;
        }
    }
}

std::string told(const SYSTEMTIME& time) {
    char text[60];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d %d", time.wYear, time.wMonth,
                  time.wDay, time.wHour, time.wMinute, time.wSecond, time.wDayOfWeek);
    return text;
}

/// Zones far enough from each other that the date differs, too.
constexpr const char* zones[] = {"UTC0", "AAA-14", "BBB+12"};

} // namespace

template <class Form>
class CrtTime : public testing::Test {};

using Forms = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CrtTime, Forms);

TYPED_TEST(CrtTime, DateAndTimeAreLocal) {
    for (const char* name : zones) {
        const TimeZone zone(name);
        typename TypeParam::Char text[9];
        expectNow("%m/%d/%y", [&] { return shown(TypeParam::date(text)); });
        expectNow("%H:%M:%S", [&] { return shown(TypeParam::time(text)); });
    }
}

TYPED_TEST(CrtTime, PlainFormsReturnTheirBufferAndLeaveErrnoAlone) {
    typename TypeParam::Char text[9];
    errno = 99;
    EXPECT_EQ(TypeParam::date(text), text);
    EXPECT_EQ(TypeParam::time(text), text);
    EXPECT_EQ(TypeParam::date(nullptr), nullptr);
    EXPECT_EQ(TypeParam::time(nullptr), nullptr);
    EXPECT_EQ(errno, 99);
}

TYPED_TEST(CrtTime, CheckedFormsReturnTheCountOfCharacters) {
    using Char = typename TypeParam::Char;
    for (const auto call : {TypeParam::dateChecked, TypeParam::timeChecked}) {
        Marked<Char, 10> buffer;
        errno = 99;
        EXPECT_EQ(call(buffer.text, 9), 8);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(buffer.bytes().substr(8), "0#");
    }
}

TYPED_TEST(CrtTime, CheckedFormsRefuseNullAndLessThanNineCharacters) {
    using Char = typename TypeParam::Char;
    for (const auto call : {TypeParam::dateChecked, TypeParam::timeChecked}) {
        Marked<Char, 8> buffer;
        errno = 99;
        EXPECT_EQ(call(buffer.text, 8), -1);
        EXPECT_EQ(errno, 22);
        EXPECT_EQ(buffer.bytes(), "########");
        errno = 99;
        EXPECT_EQ(call(nullptr, 9), -1);
        EXPECT_EQ(errno, 22);
    }
}

TYPED_TEST(CrtTime, CheckedFormsWriteWhatThePlainOnesDo) {
    typename TypeParam::Char text[9];
    expectNow("%m/%d/%y", [&] {
        EXPECT_EQ(TypeParam::dateChecked(text, 9), 8);
        return shown(text);
    });
    expectNow("%H:%M:%S", [&] {
        EXPECT_EQ(TypeParam::timeChecked(text, 100), 8);
        return shown(text);
    });
}

TEST(CrtLocalTime, TellsTheLocalDateTimeAndDayOfTheWeek) {
    for (const char* name : zones) {
        const TimeZone zone(name);
        expectNow("%Y-%m-%d %H:%M:%S %w", [] {
            SYSTEMTIME time{};
            GetLocalTime(&time);
            return told(time);
        });
    }
}

TEST(CrtLocalTime, AlwaysTellsZeroMilliseconds) {
    for (int i = 0; i < 100; ++i) {
        SYSTEMTIME time{};
        time.wMilliseconds = 7;
        GetLocalTime(&time);
        EXPECT_EQ(time.wMilliseconds, 0);
    }
}

TEST(CrtLocalTime, FillsNothingForNull) {
    errno = 99;
    GetLocalTime(nullptr);
    EXPECT_EQ(errno, 99);
}
