#include <KxQts/system/systeminfo.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace {

/// 2011-03-05 14:07:09, a Saturday.
constexpr SYSTEMTIME moment{2011, 3, 6, 5, 14, 7, 9, 250};

/// The program's time zone for a scope.
class TimeZone {
public:
    explicit TimeZone(const char* zone) { setenv("TZ", zone, 1); }
    ~TimeZone() {
        before ? setenv("TZ", before->c_str(), 1) : unsetenv("TZ");
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    const std::optional<std::string> before =
        std::getenv("TZ") ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
};

using TypedCall = bool (*)(LCID, DWORD, const SYSTEMTIME*, const QString&, QString&);

QString textOf(TypedCall call, const SYSTEMTIME* time) {
    QString text = QStringLiteral("old");
    EXPECT_TRUE(call(0x409, 7, time, QStringLiteral("yyyy-MM-dd"), text));
    return text;
}

/// The four calls of one kind of text by one name.
struct Narrow {
    using Character = char;
    static int date(const SYSTEMTIME* time, char* out, int size) {
        return GetDateFormatA(0, 0, time, "yyyy", out, size);
    }
    static int time(const SYSTEMTIME* time, char* out, int size) {
        return GetTimeFormatA(0, 0, time, nullptr, out, size);
    }
};
struct Wide {
    using Character = wchar_t;
    static int date(const SYSTEMTIME* time, wchar_t* out, int size) {
        return GetDateFormatW(0, 0, time, L"yyyy", out, size);
    }
    static int time(const SYSTEMTIME* time, wchar_t* out, int size) {
        return GetTimeFormatW(0, 0, time, nullptr, out, size);
    }
};

template <class Calls>
class DateTimeCall : public testing::Test {
protected:
    using Character = typename Calls::Character;
    static constexpr Character mark = '#';

    DateTimeCall() { buffer.fill(mark); }

    [[nodiscard]] std::string written() const {
        std::string text;
        for (const Character character : buffer)
            text += character == 0 ? '0' : static_cast<char>(character);
        return text;
    }

    std::array<Character, 10> buffer{};
};

using Texts = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(DateTimeCall, Texts);

} // namespace

TEST(DateTime, DateAndTimeAreBothTheTimeOfDay) {
    EXPECT_EQ(textOf(getDateFormat, &moment), "14:07:09");
    EXPECT_EQ(textOf(getTimeFormat, &moment), "14:07:09");
}

TEST(DateTime, WithoutAMomentIsNow) {
    for (const TypedCall call : {getDateFormat, getTimeFormat}) {
        const auto clock = [] {
            const time_t now = time(nullptr);
            tm local{};
            localtime_r(&now, &local);
            std::array<char, 16> text{};
            std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
            return QString(text.data());
        };
        QString before;
        QString told;
        do { // the second must not change in between
            before = clock();
            told = textOf(call, nullptr);
        } while (before != clock());
        EXPECT_EQ(told, before);
    }
}

TEST(DateTime, FollowsTheTimeZoneThatTheProgramSets) {
    const auto hourIn = [](const char* zone) {
        const TimeZone ofProgram(zone);
        return textOf(getTimeFormat, nullptr).left(2).toInt();
    };
    const auto hoursAhead = [&](const char* zone) {
        int ahead = 0;
        int before = 0;
        do { // the hour must not change in between
            before = hourIn("UTC0");
            ahead = hourIn(zone) - before;
        } while (before != hourIn("UTC0"));
        return (ahead + 24) % 24;
    };
    EXPECT_EQ(hoursAhead("FIVE-5"), 5);
    EXPECT_EQ(hoursAhead("WEST3"), 21);
}

TEST(DateTime, LeavesErrnoAlone) {
    const TimeZone unknown("No/Such");
    errno = 77;
    textOf(getTimeFormat, nullptr);
    textOf(getDateFormat, &moment);
    EXPECT_EQ(errno, 77);
}

TEST(DateTime, TakesNumbersThatNoDateHas) {
    const SYSTEMTIME odd{65535, 0, 9, 31, 25, 61, 62, 0};
    EXPECT_EQ(textOf(getDateFormat, &odd), "25:61:62");
    const SYSTEMTIME shifted{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535};
    EXPECT_EQ(textOf(getDateFormat, &shifted).size(), 8) << "a long day moves what is cut out";
}

TYPED_TEST(DateTimeCall, ToldTheSizeCountsTheTerminator) {
    for (const auto call : {TypeParam::date, TypeParam::time}) {
        errno = 77;
        EXPECT_EQ(call(&moment, nullptr, 0), 9);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(call(&moment, this->buffer.data(), 0), 9);
        EXPECT_EQ(this->written(), "##########");
    }
}

TYPED_TEST(DateTimeCall, CopiedTheResultDoesNotCountTheTerminator) {
    for (const auto call : {TypeParam::date, TypeParam::time}) {
        this->buffer.fill(this->mark);
        errno = 77;
        EXPECT_EQ(call(&moment, this->buffer.data(), 9), 8);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(this->written(), "14:07:090#");
    }
}

TYPED_TEST(DateTimeCall, TooLittleRoomWritesNothing) {
    for (const auto call : {TypeParam::date, TypeParam::time}) {
        for (const int size : {1, 8}) {
            errno = 0;
            EXPECT_EQ(call(&moment, this->buffer.data(), size), 0);
            EXPECT_EQ(errno, 234);
        }
    }
    EXPECT_EQ(this->written(), "##########");
}

TYPED_TEST(DateTimeCall, RefusesNegativeSizesAndMissingBuffers) {
    for (const auto call : {TypeParam::date, TypeParam::time}) {
        errno = 0;
        EXPECT_EQ(call(&moment, this->buffer.data(), -1), 0);
        EXPECT_EQ(errno, 87);
        errno = 0;
        EXPECT_EQ(call(&moment, nullptr, 9), 0);
        EXPECT_EQ(errno, 87);
    }
    EXPECT_EQ(this->written(), "##########");
}
