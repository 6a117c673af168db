#include "fakes/sleeplessclock.h"

#include <KxQts/system/randominput.h>

#include <gtest/gtest.h>

#include <set>

namespace {

/// What two words become at a time.
struct Stirred {
    explicit Stirred(std::uint64_t microseconds) {
        KxTest::SleeplessClock clock;
        clock.sleep(std::chrono::microseconds(microseconds));
        getRandomInput(&mixXor, &mixSum, &low, &high);
    }

    unsigned long mixXor = 0x11;
    unsigned long mixSum = 0x22;
    unsigned long low = 77;
    unsigned long high = 77;
};

} // namespace

TEST(RandomInput, TellsTheTimeInTwoHalves) {
    const Stirred words(0x1234'9ABC'DEF3);
    EXPECT_EQ(words.low, 0x9ABCDEF3u);
    EXPECT_EQ(words.high, 0x1234u);
}

TEST(RandomInput, LeavesTheWordsAloneAtTimesThatEndInNoBits) {
    const Stirred words(0x7'0000'00F0);
    EXPECT_EQ(words.mixXor, 0x11u);
    EXPECT_EQ(words.mixSum, 0x22u);
    EXPECT_EQ(words.high, 7u);
}

TEST(RandomInput, StirsBothWordsWithTheSameNumber) {
    for (int i = 0; i < 8; ++i) {
        const Stirred words(1);
        const unsigned long number = words.mixXor ^ 0x11;
        EXPECT_EQ(words.mixSum, 0x22 + number);
        EXPECT_LE(number, 0x7FFFFFFFu);
    }
}

TEST(RandomInput, StirsWithSeveralNumbersAtMostTimes) {
    // Of several numbers, exclusive or and sum are the same by the rarest chance only.
    for (const std::uint64_t time : {2, 15}) {
        const Stirred words(time);
        EXPECT_NE(words.mixXor ^ 0x11, words.mixSum - 0x22) << time;
    }
}

TEST(RandomInput, IsSeededAnewEachTime) {
    std::set<unsigned long> seen;
    for (int i = 0; i < 8; ++i)
        seen.insert(Stirred(1).mixXor);
    EXPECT_GT(seen.size(), 4u);
}
