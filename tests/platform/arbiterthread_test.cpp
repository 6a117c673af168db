#include "platform/linux/arbiterthread.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <future>
#include <pthread.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Korvex::ArbiterThread;

namespace {

/// Waits until everything that was handed in has been done.
void waitForAll() {
    std::promise<void> done;
    ArbiterThread::instance().run([&] { done.set_value(); });
    done.get_future().get();
}

bool signalsAreBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGINT) == 1;
}

} // namespace

TEST(ArbiterThread, DoesJobsInOrderOnOneThreadThatTakesNoSignals) {
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    int blocked = 0;
    std::promise<void> start;
    ArbiterThread::instance().run([&] { start.get_future().get(); });
    for (int i = 0; i < 20; ++i)
        ArbiterThread::instance().run([&, i] {
            order.push_back(i);
            threads.push_back(std::this_thread::get_id());
            blocked += signalsAreBlocked() ? 1 : 0;
        });
    start.set_value();
    waitForAll();
    ASSERT_EQ(order.size(), 20u);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
        EXPECT_EQ(threads[static_cast<std::size_t>(i)], threads.front());
    }
    EXPECT_NE(threads.front(), std::this_thread::get_id());
    EXPECT_EQ(blocked, 20);
    EXPECT_FALSE(signalsAreBlocked()) << "here";
}

TEST(ArbiterThread, JobsMayWaitForJobsOfTheirOwn) {
    std::promise<bool> answered;
    ArbiterThread::instance().run([&] {
        std::promise<void> inner;
        ArbiterThread::instance().run([&] { inner.set_value(); });
        inner.get_future().get();
        answered.set_value(true);
    });
    EXPECT_TRUE(answered.get_future().get());
    waitForAll();
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

/// Runs a job where no thread is to be had. \return Whether it has run once, and here.
bool runsAtOnce() {
    static int runs = 0;
    static bool isHere = false;
    static const std::thread::id here = std::this_thread::get_id();
    ArbiterThread::instance().run([] {
        ++runs;
        isHere = std::this_thread::get_id() == here;
    });
    return runs == 1 && isHere;
}

void forbidThreads() {
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, ~std::size_t{0} / 4 * 3 & ~std::size_t{0xFFFF});
    pthread_setattr_default_np(&huge);
}

/// Leaves not one block to be had.
void takeAllMemory() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = pages * static_cast<std::size_t>(getpagesize()) + (4 << 20);
    const rlimit both{limit, limit};
    setrlimit(RLIMIT_AS, &both);
    for (std::size_t size = 1 << 20; size >= 8; size /= 2) {
        while (auto* block = static_cast<volatile char*>(std::malloc(size)))
            *block = 0;
    }
}

} // namespace

TEST(ArbiterThreadDeathTest, DoesAJobAtOnceWhereThereIsNoThread) {
    const auto withoutThreads = [] {
        forbidThreads();
        std::_Exit(runsAtOnce() ? 0 : 1);
    };
    EXPECT_EXIT(withoutThreads(), testing::ExitedWithCode(0), "");
}

TEST(ArbiterThreadDeathTest, DoesAJobOnceWhereThereIsNoMemoryForAThread) {
    const auto withoutMemory = [] {
        waitForAll(); // what is made at the first use is there
        takeAllMemory();
        std::_Exit(runsAtOnce() ? 0 : 1);
    };
    EXPECT_EXIT(withoutMemory(), testing::ExitedWithCode(0), "");
}

#endif
