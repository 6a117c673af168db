// What the library makes of the disk utility, with scripts in the utility's place.

#include <KxQts/disk/diskutility.h>
#include <KxQts/support/log.h>
#include <KxQts/system/commandline.h>

#include "common/child.h"
#include "common/ownroot.h"
#include "common/scratchfile.h"
#include "disk/diskutility.h"
#include "fakes/peer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::Connection;
using KxTest::contentsOf;
using KxTest::inChild;
using KxTest::Peer;
using KxTest::placeDiskUtilityScript;
using KxTest::words;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr unsigned short commandPort = 12316;
constexpr std::size_t requestSize = 2068;

/// The daemon, which answers with one status after the other, the last one for ever, and keeps the
/// command lines.
class Daemon {
public:
    explicit Daemon(std::vector<unsigned> toAnswer)
        : statuses(std::move(toAnswer)), peer(commandPort, [this](Connection& connection) {
              lines.emplace_back(connection.read(requestSize).c_str() + textOffset);
              connection.write(words({6, next()}));
              connection.readToEnd();
          }) {}

    std::vector<std::string> lines;

private:
    static constexpr std::size_t textOffset = 20;

    unsigned next() { return statuses[std::min(lines.size(), statuses.size()) - 1]; }

    const std::vector<unsigned> statuses;
    const Peer peer;
};

/// Runs something in a process that is root for the library. \return What that printed.
std::string inRootMode(const std::function<void()>& checks) {
    const std::string output = fs::current_path() / "printed";
    EXPECT_TRUE(inChild([&] {
        ASSERT_NE(std::freopen(output.c_str(), "w", stdout), nullptr);
        setRootModeFor_executeCommandLineTool();
        checks();
    }));
    std::string text = contentsOf(output);
    fs::remove(output);
    return text;
}

/// Tests that put a script at the fixed place. It keeps its arguments in a file, one line a call.
class DiskUtility : public testing::Test {
protected:
    void SetUp() override {
        if (!KxTest::hasOwnRoot())
            GTEST_SKIP() << "a program at a fixed path needs root's rights";
        Korvex::IOLogOpen(log.c_str(), 2, "test", "");
    }
    void TearDown() override {
        Korvex::IOLogClose();
        for (const std::string& file : {log, calls, script})
            fs::remove(file);
        if (KxTest::hasOwnRoot()) {
            KxTest::removeDiskUtility();
            fs::remove_all("/Korvex/info");
        }
    }

    void place(const std::string& body) const {
        placeDiskUtilityScript("for each; do printf '[%s]' \"$each\"; done >>" + calls +
                               "; echo >>" + calls + '\n' + body);
    }

    /// A utility that prints an answer.
    void answer(const std::string& text) const {
        std::ofstream(script) << text;
        place("cat " + script);
    }

    [[nodiscard]] std::string called() const { return contentsOf(calls); }
    [[nodiscard]] bool hasLogged(const std::string& line) const {
        return contentsOf(log).find("test: " + line + '\n') != std::string::npos;
    }

    const std::string log = fs::current_path() / "utility.log";
    const std::string calls = fs::current_path() / "calls";
    const std::string script = fs::current_path() / "answer";
};

/// Asks for limits. \return "RESULT CURRENT MINIMUM".
std::string limits(const char* volume = "volume") {
    unsigned long long current = 1;
    unsigned long long minimum = 2;
    const int result = getVolumeFreeSpace(QString::fromLatin1(volume), current, minimum);
    return std::to_string(result) + ' ' + std::to_string(current) + ' ' + std::to_string(minimum);
}

std::string space(const char* volume = "volume") {
    unsigned long long freeSpace = 1;
    const int result = getVolumeFreeSpaceFromInfo(QString::fromLatin1(volume), freeSpace);
    return std::to_string(result) + ' ' + std::to_string(freeSpace);
}

class Limits : public DiskUtility {};
class Space : public DiskUtility {};

} // namespace

TEST(MountUnmount, SendsTheArgumentsToTheDaemon) {
    Daemon daemon({0});
    EXPECT_EQ(mountUnmountVolume(QStringLiteral("disk1s2"), true), 0);
    EXPECT_EQ(mountUnmountVolume(QStringLiteral("/Volumes/a b"), false), 0);
    EXPECT_EQ(mountUnmountDisk(QStringLiteral("/dev/disk1"), true), 0);
    EXPECT_EQ(mountUnmountDisk(QStringLiteral("-disk1"), false), 0);
    QStringList own{"eject", "disk2", "now"};
    EXPECT_EQ(mountUnmountVolumeDisk(own), 0);
    EXPECT_EQ(own, QStringList({"eject", "disk2", "now"}));
    EXPECT_THAT(daemon.lines, ElementsAre("/usr/sbin/diskutil mount disk1s2",
                                          "/usr/sbin/diskutil unmount /Volumes/a b",
                                          "/usr/sbin/diskutil mountDisk /dev/disk1",
                                          "/usr/sbin/diskutil unmountDisk -disk1",
                                          "/usr/sbin/diskutil eject disk2 now"));
}

TEST(MountUnmount, TriesAgainUntilItSucceeds) {
    Daemon daemon({256, 512, 0});
    EXPECT_EQ(mountUnmountVolume(QStringLiteral("disk1s2"), true), 0);
    EXPECT_EQ(daemon.lines.size(), 3u);
}

TEST(MountUnmount, GivesUpAfterEightTriesAndSaysWhatTheDaemonSaid) {
    Daemon daemon({256, 256, 256, 256, 256, 256, 256, 768, 0});
    testing::internal::CaptureStdout();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(mountUnmountVolume(QStringLiteral("disk1s2"), false), 768);
    const auto taken = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "kxzr:unmount (status =768)\n");
    EXPECT_EQ(daemon.lines.size(), 8u);
    EXPECT_GE(taken, std::chrono::milliseconds(800)) << "a pause behind the last one too";
}

TEST_F(DiskUtility, TheArgumentsAreReadByAShell) {
    place("");
    inRootMode([] {
        EXPECT_EQ(mountUnmountVolume(QStringLiteral("'two words' $((1 + 1))"), true), 0);
        EXPECT_EQ(mountUnmountDisk(QString::fromLatin1("-\xE9"), false), 0);
    });
    EXPECT_EQ(called(), "[mount][two words][2]\n[unmountDisk][-\xE9]\n");
}

TEST_F(DiskUtility, WithoutTheDaemonTheLastStatusIsPrintedWithoutAMessage) {
    place("exit 3");
    const std::string printed =
        inRootMode([] { EXPECT_EQ(mountUnmountDisk(QStringLiteral("disk1"), true), 3 * 256); });
    EXPECT_EQ(printed, "kxzr:mountDisk \n");
    EXPECT_EQ(called().size(), 8 * std::strlen("[mountDisk][disk1]\n"));
}

TEST(MountUnmount, WithoutArgumentsFailsLikeAnyOther) {
    Daemon daemon({256});
    testing::internal::CaptureStdout();
    QStringList none;
    EXPECT_EQ(mountUnmountVolumeDisk(none), 256);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "kxzr: (status =256)\n");
    EXPECT_EQ(daemon.lines.size(), 8u);
}

TEST(ResizeVolume, RoundsUpToBlocks) {
    Daemon daemon({0});
    QString output = QStringLiteral("untouched");
    for (const unsigned long long size : {0ULL, 1ULL, 4096ULL, 4097ULL, 1000000ULL, 1ULL << 42})
        EXPECT_EQ(resizeVolume(QStringLiteral("v"), size, output), 0);
    // The arithmetic has 64 bits.
    EXPECT_EQ(resizeVolume(QStringLiteral("v"), ~0ULL, output), 0);
    const std::string begin = "/usr/sbin/diskutil resizeVolume v ";
    EXPECT_THAT(daemon.lines,
                ElementsAre(begin + "0B", begin + "4096B", begin + "4096B", begin + "8192B",
                            begin + "1003520B", begin + "4398046511104B", begin + "0B"));
    EXPECT_EQ(output, "untouched");
}

TEST(ResizeVolume, IsTriedOnceAndGivesTheDaemonsMessage) {
    Daemon daemon({256});
    QString output;
    EXPECT_EQ(resizeVolume(QStringLiteral("v"), 4096, output), 256);
    EXPECT_EQ(output, "(status =256)");
    EXPECT_EQ(daemon.lines.size(), 1u);
}

TEST_F(Limits, AreReadFromTheUtilitysAnswer) {
    answer("Current size:  499.9 GB (499763888128 Bytes)\n"
           "Minimum size:  12.5 GB (12499968000 Bytes)\n");
    EXPECT_EQ(limits(), "0 499763888128 12499968000");
    EXPECT_EQ(called(), "[resizeVolume][volume][limits]\n");
}

TEST_F(Limits, ReachTheUtilityWithoutAShell) {
    place("");
    EXPECT_EQ(limits("- a  b;'$(id)\n"), "0 0 0");
    EXPECT_EQ(called(), "[resizeVolume][- a  b;'$(id)\n][limits]\n");
}

TEST_F(Limits, MayBeInSmallLetters) {
    answer("Current size: (1 bytes)\nMinimum size: (2 bytes)");
    EXPECT_EQ(limits(), "0 1 2");
    answer("Current size: (1 bytes)\nMinimum size: (2 Bytes)");
    EXPECT_EQ(limits(), "0 1 2");
    answer("Current size: (1 Bytes)\nMinimum size: (2 bytes)");
    EXPECT_EQ(limits(), "0 0 0") << "small letters are looked for first, as far as there is text";
}

TEST_F(Limits, AreZeroWhereTheAnswerDoesNotTell) {
    answer("Current size: 1 B (1 Bytes)\nAnother size: (2 Bytes)\n");
    EXPECT_EQ(limits(), "0 1 0");
    answer("Minimum size: (2 Bytes)");
    EXPECT_EQ(limits(), "0 0 2");
    answer("current size: (1 Bytes) minimum size: (2 Bytes)");
    EXPECT_EQ(limits(), "0 0 0") << "letter case matters";
    answer("Current size: 1 Bytes Minimum size: 2 Bytes");
    EXPECT_EQ(limits(), "0 0 0");
    answer("Current size: (1 BYTES) Minimum size: (2 BYTES)");
    EXPECT_EQ(limits(), "0 0 0");
    answer("");
    EXPECT_EQ(limits(), "0 0 0");
}

TEST_F(Limits, AMinimumInFrontOfTheCurrentSizeIsNotSeen) {
    answer("Minimum size: (2 Bytes)\nCurrent size: (1 Bytes)\n");
    EXPECT_EQ(limits(), "0 1 0");
    answer("Current size: (1 of Minimum size: Bytes) Minimum size: (3 Bytes)");
    EXPECT_EQ(limits(), "0 0 3") << "what was in the parentheses is gone";
    answer("Current size: (1 Minimum size: (2");
    EXPECT_EQ(limits(), "0 0 0");
    answer("( Current size: 7 ) (5 Bytes) Minimum size: ) (6 Bytes)");
    EXPECT_EQ(limits(), "0 5 6") << "the parenthesis is the first one behind the label";
}

TEST_F(Limits, ANumberMayHaveWhiteSpaceAroundItButNothingElse) {
    answer("Current size: (\t 12\n Bytes) Minimum size: (1 2 Bytes)");
    EXPECT_EQ(limits(), "0 12 0");
    answer("Current size: (12,000 Bytes) Minimum size: (0x10 Bytes)");
    EXPECT_EQ(limits(), "0 0 0");
    answer("Current size: (9223372036854775807Bytes) Minimum size: (9223372036854775808 Bytes)");
    EXPECT_EQ(limits(), "0 9223372036854775807 0") << "the numbers are signed";
}

TEST_F(Limits, TheAnswerEndsAtTheFirstNul) {
    answer(std::string("Current size: (1 Bytes)\0Minimum size: (2 Bytes)", 47));
    EXPECT_EQ(limits(), "0 1 0");
}

TEST_F(Limits, WhatGoesToStandardErrorIsNoAnswer) {
    place("echo 'Current size: (1 Bytes)' >&2; echo 'Minimum size: (2 Bytes)'");
    EXPECT_EQ(limits(), "0 0 2");
}

TEST_F(Limits, AFailureIsReturnedAndLogged) {
    place("echo 'Current size: (1 Bytes) Minimum size: (2 Bytes)'; exit 7");
    EXPECT_EQ(limits(), "7 0 0");
    EXPECT_TRUE(hasLogged("getVolumeFreeSpace: start/run diskutil failed; status 7."));
}

TEST_F(Limits, AUtilityThatIsNotThereGivesZeros) {
    EXPECT_EQ(limits(), "0 0 0");
}

TEST_F(Limits, AUtilityThatTakesTooLongIsEndedAndWhatItHasToldCounts) {
    // The script writes its process number behind the answer.
    place("echo 'Current size: (1 Bytes) Minimum size: (2 Bytes)'; echo $$ >" + script +
          "; exec sleep 1000");
    const int before = Korvex::DiskUtility::setTimeLimit(3000);
    EXPECT_EQ(before, 30000);
    EXPECT_EQ(limits(), "0 1 2");
    Korvex::DiskUtility::setTimeLimit(before);
    const std::string process = contentsOf(script);
    EXPECT_FALSE(fs::exists("/proc/" + process.substr(0, process.find('\n'))));
}

TEST_F(Space, IsReadFromTheScratchFile) {
    answer("   Volume Name: x\n   Free Space:  10.0 GB (10000000000 Bytes) (exactly)\n");
    EXPECT_EQ(space(), "0 10000000000");
    EXPECT_EQ(called(), "[info][volume]\n");
    EXPECT_TRUE(fs::exists("/Korvex/info")) << "it is not removed";
}

TEST_F(Space, TheFirstLabelCountsWhateverStandsInFront) {
    answer("Purgeable Space: 1 kB (1000 Bytes)\nFree Space: 2 kB (2000 Bytes)\n");
    EXPECT_EQ(space(), "0 1000");
}

TEST_F(Space, AShellReadsTheVolumesName) {
    answer("Space: (5 Bytes)");
    EXPECT_EQ(space("a b 'c d'"), "0 5");
    EXPECT_EQ(called(), "[info][a][b][c d]\n");
    EXPECT_EQ(space("\xE9"), "0 5");
    EXPECT_THAT(called(), HasSubstr("[info][\xE9]\n"));
}

TEST_F(Space, MissingPartsAreLoggedAndNoFailure) {
    answer("space: (1 Bytes)");
    EXPECT_EQ(space(), "0 0");
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: <Space:> can^t be found."));
    answer("(Space: 1 Bytes");
    EXPECT_EQ(space(), "0 0");
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: <(> can^t be found."));
    answer("Space: (1 bytes)");
    EXPECT_EQ(space(), "0 0") << "small letters are not taken here";
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: <Bytes> can^t be found."));
}

TEST_F(Space, OnlyTheEndsOfTheNumberAreTrimmed) {
    answer("Space: (\n 12 \tBytes)");
    EXPECT_EQ(space(), "0 12");
    answer("Space: (1  2 Bytes)");
    EXPECT_EQ(space(), "0 0");
    answer("Space: (-1 Bytes)");
    EXPECT_EQ(space(), "0 18446744073709551615") << "read as a signed number";
}

TEST_F(Space, TheAnswerEndsAtTheFirstNul) {
    answer(std::string("Space: (1\0 Bytes)", 17));
    EXPECT_EQ(space(), "0 0");
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: <Bytes> can^t be found."));
}

TEST_F(Space, AFailureIsReturnedAndLogged) {
    place("exit 2");
    EXPECT_EQ(space("disk1"), "512 0");
    EXPECT_TRUE(hasLogged("/usr/sbin/diskutil info disk1 > /Korvex/info/Korvex/infosysmem("
                          "[getVolumeFreeSpaceFromInfo: ]) failed; status 512."));
}

TEST_F(Space, WithoutTheFolderTheShellFails) {
    place("");
    fs::remove("/Korvex");
    testing::internal::CaptureStderr();
    EXPECT_NE(space("disk1").substr(0, 2), "0 ");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("/Korvex/info"));
    EXPECT_FALSE(fs::exists("/Korvex")) << "it is not made";
    fs::create_directory("/Korvex");
}

TEST_F(Space, AMissingScratchFileIsLoggedAndNoFailure) {
    place("");
    EXPECT_EQ(space("x #"), "0 0"); // the shell takes the rest for a comment
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: file not exists."));
}

TEST_F(Space, AScratchFileThatCannotBeReadIsLoggedAndNoFailure) {
    place("");
    fs::create_directory("/Korvex/info");
    EXPECT_EQ(space("x #"), "0 0");
    EXPECT_TRUE(hasLogged("getVolumeFreeSpaceFromInfo: file can^t be openned."));
}
