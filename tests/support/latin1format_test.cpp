#include "support/latin1format.h"

#include <QString>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

QByteArray format(const char* text, ...) {
    va_list args;
    va_start(args, text);
    QByteArray result = Korvex::formatLatin1(text, args);
    va_end(args);
    return result;
}

/// What Qt makes of the same; only for texts that are ASCII, where the two agree.
QByteArray byQt(const char* text, ...) {
    va_list args;
    va_start(args, text);
    QByteArray result = QString::vasprintf(text, args).toLatin1();
    va_end(args);
    return result;
}

} // namespace

#define EXPECT_AS_QT(...) EXPECT_EQ(format(__VA_ARGS__), byQt(__VA_ARGS__))

TEST(Latin1Format, LiteralsArriveByteForByte) {
    EXPECT_EQ(format(""), "");
    EXPECT_EQ(format("gr\xF6\xDF"
                     "er \xC3\xA4"),
              "gr\xF6\xDF"
              "er \xC3\xA4");
}

TEST(Latin1Format, TextArgumentsArriveByteForByte) {
    EXPECT_EQ(format("<%s>", "\xE4\xC3\xA4\x80\xFF"), "<\xE4\xC3\xA4\x80\xFF>");
    EXPECT_EQ(format("<%6s|%-6s|%.1s|%4.1s>", "\xE4\xE4", "\xE4", "\xE4x", "\xE4x"),
              "<    \xE4\xE4|\xE4     |\xE4|   \xE4>");
}

TEST(Latin1Format, ANullTextIsTheEmptyOne) {
    const char* none = nullptr;
    EXPECT_EQ(format("<%s|%3s|%.2s|%ls>", none, none, none, none), "<|   ||>");
}

TEST(Latin1Format, ATextWithAPrecisionNeedsNoZero) {
    const char bytes[] = {'a', 'b', 'c'};
    EXPECT_EQ(format("%.3s", bytes), "abc");
    EXPECT_EQ(format("%.*s", 2, bytes), "ab");
    EXPECT_EQ(format("%.0s", bytes), "");
}

TEST(Latin1Format, WideTextIsUtf16) {
    EXPECT_EQ(format("<%ls|%5ls|%.2ls>", u"gr\u00F6", u"ab", u"abc"), "<gr\xF6|   ab|ab>");
    EXPECT_EQ(format("%ls", u"5 \u20AC"), "5 ?");
    EXPECT_EQ(format("%lc%lc", 0xE4, 0x20AC), "\xE4?");
}

TEST(Latin1Format, CharactersAreLatin1AndMayBeZero) {
    EXPECT_EQ(format("<%c%c%3c>", 'a', 0xE4, 'b'), "<a\xE4  b>");
    EXPECT_EQ(format("a%cb", 0), QByteArray("a\0b", 3));
}

TEST(Latin1Format, IntegersOfEverySizeLookAsInQt) {
    EXPECT_EQ(format("%d %i %u", -5, 6, 7U), "-5 6 7");
    EXPECT_EQ(format("%x %X %o %#x", 255U, 255U, 8U, 255U), "ff FF 10 0xff");
    EXPECT_AS_QT("%hhd %hd %hhu %hu", 300, 70000, 300U, 70000U);
    EXPECT_EQ(format("%ld %lu", -1L, ~0UL),
              QByteArray("-1 ") + QByteArray::number(qulonglong(~0UL)));
    EXPECT_EQ(format("%lld %llu %llx", std::numeric_limits<long long>::min(), ~0ULL, ~0ULL),
              "-9223372036854775808 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(format("%qd %Ld", 1LL << 40, 1LL << 40), "1099511627776 1099511627776");
    EXPECT_EQ(format("%zu %zd %Zu", ~std::size_t{0} >> 1, std::ptrdiff_t{-3}, std::size_t{3}),
              QByteArray::number(qulonglong(~std::size_t{0} >> 1)) + " -3 3");
    EXPECT_EQ(format("%td %jd %ju", std::ptrdiff_t{-4}, std::intmax_t{-5}, std::uintmax_t{6}),
              "-4 -5 6");
}

TEST(Latin1Format, FlagsWidthsAndPrecisionsLookAsInQt) {
    EXPECT_AS_QT("%5d|%-5d|%05d|%+d|% d|%.3d|%8.3d|%-8.3d|", 42, 42, 42, 42, 42, 42, 42, 42);
    EXPECT_AS_QT("%#o|%#x|%#X|%08x|%-08x|", 8U, 255U, 255U, 255U, 255U);
    EXPECT_AS_QT("%*d|%-*d|%*d|%.*d|%.*d", 5, 42, 5, 42, -5, 42, 3, 42, -3, 42);
    EXPECT_AS_QT("%--5d|%+ 5d|%00005d|%'d", 42, 42, 42, 1234567);
    EXPECT_AS_QT("%5.d|%5.0d", 42, 0);
}

TEST(Latin1Format, FloatingNumbersLookAsInQt) {
    EXPECT_AS_QT("%f %e %g %F %E %G", 1.5, 1.5, 1.5, 1.5, 1.5, 1.5);
    EXPECT_AS_QT("%.2f|%8.2f|%-8.2f|%+.1e|%#g", 3.14159, 3.14159, 3.14159, 3.14159, 3.0);
    EXPECT_AS_QT("%f %f %F", INFINITY, NAN, -INFINITY);
    EXPECT_AS_QT("%lf", 2.5);
    EXPECT_EQ(format("%.2Lf %d", 2.5L, 7), "2.50 7");
    EXPECT_AS_QT("%a", 1.0);
}

TEST(Latin1Format, PointersLookAsInQt) {
    const void* pointer = reinterpret_cast<const void*>(0x1234);
    EXPECT_AS_QT("%p|%20p|%p", pointer, pointer, nullptr);
}

TEST(Latin1Format, PercentSignsAndWhatIsNoConversionStandForThemselves) {
    EXPECT_AS_QT("100%% %d%%", 5);
    EXPECT_EQ(format("%I64d", 1LL), "%I64d");
    EXPECT_EQ(format("50%: %d", 7), "50%: 7");
    for (const char* text : {"%", "a%", "%5", "%-", "%.", "%.3", "%l", "%ll", "%5%", "%y", "%S %C",
                             "%-5y", "%.2!", "% ", "%\n"})
        EXPECT_EQ(format(text), byQt(text)) << text;
    EXPECT_AS_QT("%5% d", 3);
    EXPECT_AS_QT("%*y%d", 5, 6);
}

TEST(Latin1Format, ArgumentsBehindAnOddOneAreStillFound) {
    EXPECT_EQ(format("%s %ld %c %f %s", "a", 1L, 'c', 0.5, "b"), "a 1 c 0.500000 b");
    EXPECT_EQ(format("%d%d%d%d%d%d%d%d%d%d", 1, 2, 3, 4, 5, 6, 7, 8, 9, 0), "1234567890");
    EXPECT_EQ(format("%f%f%f%f%f%f%f%f%f%d", 1., 2., 3., 4., 5., 6., 7., 8., 9., 1).right(2), "01");
}

TEST(Latin1Format, CountsAreTakenButNotStored) {
    int count = 77;
    EXPECT_EQ(format("abc%n%d", &count, 5), "abc5");
    EXPECT_EQ(count, 77);
}

TEST(Latin1Format, AbsurdWidthsAreCutDown) {
    EXPECT_EQ(format("%1000s", "x").size(), 1000);
    for (const char* text : {"%65536d", "%2147483647d", "%2147483648d", "%99999999999999999999d",
                             "%.2147483647d", "%.99999999999999999999d"})
        EXPECT_EQ(format(text, 5).size(), 65535) << text;
    EXPECT_EQ(format("%*d%.*s|", INT_MAX, 5, INT_MAX, "x").size(), 65537);
    EXPECT_EQ(format("%*d", INT_MIN, 5), "5");
}
