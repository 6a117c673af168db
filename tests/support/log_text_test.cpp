// What is written to the log.

#include "common/locales.h"
#include "support/logfixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Korvex::__kx_glog;
using Korvex::IOLog;
using KxTest::appending;
using KxTest::contentsOf;
using KxTest::linesOf;
using KxTest::Log;
using KxTest::stamp;
using testing::MatchesRegex;

TEST_F(Log, LinesHaveTimeTitleAndText) {
    openQuietly();
    IOLog("%s %d", "a", 1);
    Korvex::IOTxt("%s", "b");
    Korvex::IOLog1(true, "%s", "c");
    Korvex::IOLog1(false, "%s", "never");
    EXPECT_THAT(logged(), MatchesRegex(stamp + " title: a 1\n" + stamp + " title: b\n" + stamp +
                                       " title: c\n"));
}

TEST_F(Log, PrintedTextStandsAsItIs) {
    openQuietly();
    Korvex::IOPrint("%s|", "a");
    Korvex::IOPrint1(true, "%d|", 2);
    Korvex::IOPrint1(false, "never");
    EXPECT_EQ(logged(), "a|2|");
}

TEST_F(Log, TheTimeIsTheLocalOne) {
    const KxTest::EnvironmentVariable zone("TZ", "TST-5:30");
    tzset();
    openQuietly();
    const std::time_t before = std::time(nullptr);
    IOLog("x");
    const std::time_t after = std::time(nullptr);
    const std::string line = logged().substr(0, 15);
    bool found = false;
    for (std::time_t moment = before; moment <= after; ++moment) {
        std::array<char, 20> text{};
        std::tm local{};
        localtime_r(&moment, &local);
        EXPECT_EQ(local.tm_gmtoff, (5 * 60 + 30) * 60);
        std::strftime(text.data(), text.size(), "%b %d %T", &local);
        found = found || line == text.data();
    }
    EXPECT_TRUE(found) << line;
}

TEST_F(Log, APercentSignInTheTitleIsReadAsAConversion) {
    openQuietly(QStringLiteral("<%d>"));
    IOLog("%d", 1, 2);
    EXPECT_THAT(logged(), MatchesRegex(stamp + " <1>: 2\n"));
}

TEST_F(Log, APercentSignBeforeTheColonStands) {
    openQuietly(QStringLiteral("50%"));
    IOLog("%d", 1);
    EXPECT_THAT(logged(), MatchesRegex(stamp + " 50%: 1\n"));
}

TEST_F(Log, TextReachesTheLogByteForByte) {
    openQuietly(QStringLiteral("t\u00EFtle"));
    IOLog("gr\xF6\xDF"
          "er %s",
          "\xE4\xFF\xC3\xA4");
    EXPECT_THAT(logged(), testing::EndsWith(" t\xEFtle: gr\xF6\xDF"
                                            "er \xE4\xFF\xC3\xA4\n"));
}

TEST_F(Log, ATitleBeyondLatin1HasQuestionMarks) {
    openQuietly(QStringLiteral("5 \u20AC"));
    IOLog("x");
    EXPECT_THAT(logged(), testing::EndsWith(" 5 ?: x\n"));
}

TEST_F(Log, EachTextIsOneWrite) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
    __kx_glog.fd = ends[1];
    const std::string longText(5000, 'x');
    IOLog("%s", longText.c_str());
    Korvex::IOPrint("a%cb%s", 0, "c");
    std::vector<char> buffer(10000);
    EXPECT_GT(recv(ends[0], buffer.data(), buffer.size(), 0), 5000);
    EXPECT_EQ(recv(ends[0], buffer.data(), buffer.size(), 0), 4) << "the zero is a character too";
    close(ends[0]);
}

TEST_F(Log, NullTextsAreEmpty) {
    openQuietly(QString());
    const char* none = nullptr;
    IOLog(none);
    Korvex::IOPrint(none);
    EXPECT_THAT(logged(), MatchesRegex(stamp + " : \n"));
    EXPECT_EQ(Korvex::IOLogClose(), 0);
    EXPECT_EQ(Korvex::IOLogOpen(none, appending, none, none), 1);
    EXPECT_THAT(contentsOf("logfile.log"), MatchesRegex(stamp + " : has been loaded.\n"));
    std::filesystem::remove("logfile.log");
}

TEST_F(Log, WhatCannotBeWrittenIsLostAndErrnoStays) {
    for (const char* path : {"/dev/full", "/dev/null"}) {
        __kx_glog.fd = open(path, O_RDWR | O_CLOEXEC);
        errno = 77;
        IOLog("%f %s", 1.5, "lost");
        Korvex::IOPrint("lost");
        EXPECT_EQ(errno, 77);
        close(__kx_glog.fd);
    }
    IOLog("to a descriptor that is closed");
    EXPECT_EQ(errno, 77);
    __kx_glog.fd = -1;
    IOLog("to none");
    EXPECT_EQ(errno, 77);
}

TEST_F(Log, ManyThreadsLeaveWholeLines) {
    constexpr int threads = 4;
    constexpr int lines = 500;
    Korvex::IOLogOpen(file.name.c_str(), appending, "title", nullptr);
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([i] {
            for (int line = 0; line < lines; ++line)
                IOLog("%d %s", i, std::string(100, static_cast<char>('a' + i)).c_str());
        });
    for (std::thread& thread : running)
        thread.join();
    std::vector<int> counts(threads);
    for (const std::string& line : linesOf(file.name)) {
        const auto at = line.find(" title: ");
        ASSERT_EQ(at, 15U) << line;
        const std::string text = line.substr(at + 8);
        if (text == "has been loaded.")
            continue;
        const int i = text[0] - '0';
        ASSERT_EQ(text, std::to_string(i) + ' ' + std::string(100, static_cast<char>('a' + i)));
        ++counts[static_cast<std::size_t>(i)];
    }
    EXPECT_THAT(counts, testing::Each(lines));
}
