#include <KxQts/handles/event.h>
#include <KxQts/system/eventlog.h>
#include <KxQts/winapi/eventlog.h>
#include <KxQts/winapi/handles.h>

#include "system/eventlines.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>

namespace {

constexpr int untouched = 77;

const HANDLE source = RegisterEventSourceA(nullptr, "Tool");

/// Reports an event with one string and four bytes, changed by the arguments.
BOOL report(HANDLE log, WORD strings, DWORD size) {
    LPCSTR text[] = {"disk ready", nullptr};
    unsigned char data[] = {1, 2, 3, 4};
    errno = untouched;
    return ReportEventA(log, EVENTLOG_ERROR_TYPE, 3, 1000, nullptr, strings, size, text, data);
}

} // namespace

TEST(EventLog, EveryRegistrationGivesTheSameHandle) {
    constexpr std::uintptr_t number = 0x5A5A5A50;
    const HANDLE expected = reinterpret_cast<HANDLE>(number);
    EXPECT_EQ(RegisterEventSourceA("\\\\server", "Tool"), expected);
    EXPECT_EQ(RegisterEventSourceW(L"\\\\server", L"Tool"), expected);
    EXPECT_EQ(RegisterEventSourceA(nullptr, nullptr), expected);
    EXPECT_EQ(RegisterEventSourceW(nullptr, nullptr), expected);
    EXPECT_EQ(registerEventSource(), expected);
}

TEST(EventLog, DeregisteringIsAlwaysTrue) {
    EXPECT_EQ(DeregisterEventSource(source), TRUE);
    EXPECT_EQ(DeregisterEventSource(source), TRUE);
    EXPECT_EQ(DeregisterEventSource(nullptr), TRUE);
}

TEST(EventLog, HandleIsNoObject) {
    errno = 0;
    EXPECT_FALSE(CloseHandle(source));
    EXPECT_EQ(errno, 22);
}

TEST(EventLog, ReportsAnEventWithStringsAndData) {
    EXPECT_EQ(report(source, 1, 4), TRUE);
    EXPECT_EQ(errno, untouched);
}

TEST(EventLog, RefusesOtherHandles) {
    EXPECT_EQ(report(nullptr, 1, 4), FALSE);
    EXPECT_EQ(errno, untouched);
    EXPECT_EQ(report(INVALID_HANDLE_VALUE, 0, 4), FALSE);
    EXPECT_EQ(errno, untouched) << "the handle is looked at first";
}

TEST(EventLog, WithoutStringsIsAnError) {
    EXPECT_EQ(report(source, 0, 4), FALSE);
    EXPECT_EQ(errno, 87);
    errno = 0;
    unsigned char data = 1;
    EXPECT_EQ(ReportEventA(source, 0, 0, 0, nullptr, 2, 1, nullptr, &data), FALSE);
    EXPECT_EQ(errno, 87) << "a count without strings";
}

TEST(EventLog, WithoutDataIsNotReportedAndNoError) {
    EXPECT_EQ(report(source, 1, 0), FALSE);
    EXPECT_EQ(errno, untouched);
    LPCSTR text[] = {"disk ready"};
    EXPECT_EQ(ReportEventA(source, 0, 0, 0, nullptr, 1, 4, text, nullptr), FALSE);
    EXPECT_EQ(errno, untouched) << "a size without data";
}

TEST(EventLog, TakesWideStringsAndNullOnes) {
    LPCWSTR text[] = {L"\u00e9\u4e2d", nullptr};
    unsigned char data[] = {1, 2, 3, 4};
    EXPECT_EQ(ReportEventW(source, 0, 0, 0, nullptr, 2, 4, text, data), TRUE);
    EXPECT_EQ(ReportEventW(nullptr, 0, 0, 0, nullptr, 2, 4, text, data), FALSE);
    LPCSTR narrow[] = {nullptr};
    EXPECT_EQ(ReportEventA(source, 0, 0, 0, nullptr, 1, 4, narrow, data), TRUE);
}

TEST(EventLog, TypedFormDoesNotLookAtTheHandle) {
    EXPECT_TRUE(reportEvent(nullptr, 1, 2, 3, nullptr, {QString()}, "x"));
    errno = untouched;
    EXPECT_FALSE(reportEvent(source, 1, 2, 3, nullptr, {QString()}, {}));
    EXPECT_EQ(errno, untouched);
    EXPECT_FALSE(reportEvent(source, 1, 2, 3, nullptr, {}, "x"));
    EXPECT_EQ(errno, 87);
}

TEST(EventLog, LabelsEachLineWithEventCategoryAndSection) {
    EXPECT_EQ(Korvex::eventLabel(1000, 3, "desc"), "KXEVT1000:CAT3 desc");
    EXPECT_EQ(Korvex::eventLabel(0xC0000001, 65535, "data"), "KXEVT-1073741823:CAT65535 data");
}

TEST(EventLog, DumpsSixteenBytesALine) {
    EXPECT_EQ(Korvex::eventDataDump(QByteArray("\x00\xAB\x0f", 3)), "00 AB 0F \n");
    const QByteArray line = "30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 \n";
    EXPECT_EQ(Korvex::eventDataDump("0123456789abcdef").toLower(), line)
        << "one new line behind 16";
    EXPECT_EQ(Korvex::eventDataDump("0123456789abcdefJ").toLower(), line + "4a \n");
}
