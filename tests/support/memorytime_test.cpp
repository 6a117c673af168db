#include <KxQts/windows.h>

#include "fakes/sleeplessclock.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <pthread.h>
#include <thread>

using namespace std::chrono_literals;

namespace {

/// A clock that stands where a test puts it.
class StoppedClock final : public Korvex::Clock {
public:
    explicit StoppedClock(std::chrono::microseconds time) : now(time) {}
    std::chrono::microseconds sinceStartUp() override { return now; }
    int sleep(std::chrono::microseconds) override { return 0; }

private:
    std::chrono::microseconds now;
    Korvex::Replacement<Korvex::Clock> inForce{*this};
};

DWORD ticksAt(std::chrono::microseconds time) {
    const StoppedClock clock(time);
    return GetTickCount();
}

} // namespace

TEST(ZeroMemory, FillsExactlyWhatItIsGiven) {
    std::array<char, 4> bytes{'a', 'b', 'c', 'd'};
    ZeroMemory(bytes.data() + 1, 2);
    EXPECT_EQ(bytes, (std::array<char, 4>{'a', '\0', '\0', 'd'}));
    ZeroMemory(bytes.data(), 0);
    EXPECT_EQ(bytes[0], 'a');
    ZeroMemory(nullptr, 4);
}

TEST(LocalFree, FreesMemoryOfTheHeapAndGivesNull) {
    EXPECT_EQ(LocalFree(std::malloc(16)), nullptr);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

TEST(GetTickCount, CountsWholeMilliseconds) {
    EXPECT_EQ(ticksAt(0us), 0U);
    EXPECT_EQ(ticksAt(999us), 0U);
    EXPECT_EQ(ticksAt(1000us), 1U);
    EXPECT_EQ(ticksAt(1999us), 1U) << "not rounded";
}

TEST(GetTickCount, StartsAgainAfter49Days) {
    const auto turn = std::chrono::milliseconds(0x100000000);
    EXPECT_EQ(ticksAt(turn - 1us), 0xFFFFFFFFU);
    EXPECT_EQ(ticksAt(turn), 0U);
    EXPECT_EQ(ticksAt(5 * turn + 7ms), 7U);
}

TEST(GetTickCount, FollowsTheClockThatNobodySets) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto before = static_cast<DWORD>(now.tv_sec * 1000 + now.tv_nsec / 1000000);
    EXPECT_LE(GetTickCount() - before, 10000U);
}

TEST(KxSleep, SleepsTheWholeTimeHoweverLong) {
    KxTest::SleeplessClock clock;
    EXPECT_EQ(kx_sleep(0), 0);
    EXPECT_EQ(kx_sleep(20), 0);
    EXPECT_EQ(kx_sleep(4294968), 0) << "its microseconds have more than 32 bits";
    EXPECT_EQ(kx_sleep(0xFFFFFFFFU), 0);
    EXPECT_EQ(clock.sleeps(),
              (std::vector<std::chrono::microseconds>{0ms, 20ms, 4294968ms, 4294967295ms}));
}

TEST(KxSleep, TakesTheTime) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(kx_sleep(5), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 5ms);
}

TEST(KxSleep, EndsWithASignal) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &before);
    std::atomic<bool> done{false};
    const pthread_t sleeper = pthread_self();
    std::thread waker([&] {
        while (!done) {
            pthread_kill(sleeper, SIGUSR1);
            std::this_thread::yield();
        }
    });
    errno = 0;
    EXPECT_EQ(kx_sleep(60000), -1);
    EXPECT_EQ(errno, EINTR);
    done = true;
    waker.join();
    sigaction(SIGUSR1, &before, nullptr);
}
