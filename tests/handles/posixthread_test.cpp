#include <KxQts/handles/posixthread.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <semaphore>
#include <sys/resource.h>
#include <thread>

#include "common/unprivileged.h"

using Korvex::Thread;

namespace {

/// Lets a test have another range of priorities than the system's.
class PriorityRange {
public:
    PriorityRange(int min, int max) {
        Thread::sPriorityMin = min;
        Thread::sPriorityMax = max;
    }
    ~PriorityRange() {
        Thread::sPriorityMin = sched_get_priority_min(0);
        Thread::sPriorityMax = sched_get_priority_max(0);
    }
    PriorityRange(const PriorityRange&) = delete;
    PriorityRange& operator=(const PriorityRange&) = delete;
};

/// Runs a piece of work in \c run.
class Running : public Thread {
public:
    explicit Running(std::function<void(Running&)> toDo) : work(std::move(toDo)) {}
    ~Running() override {
        Stop();
        Join();
    }
    void run() override { work(*this); }

private:
    std::function<void(Running&)> work;
};

void poll(void* context, bool* stopFlag) {
    auto& polls = *static_cast<std::atomic<int>*>(context);
    while (!std::atomic_ref(*stopFlag).load())
        ++polls;
}

std::size_t stackSizeOfThisThread() {
    pthread_attr_t attributes;
    void* end = nullptr;
    std::size_t size = 0;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstack(&attributes, &end, &size);
    pthread_attr_destroy(&attributes);
    return size;
}

} // namespace

TEST(PosixThread, IsIdleAtFirst) {
    Thread thread;
    EXPECT_FALSE(thread.stopRequested);
    EXPECT_EQ(thread.thread, pthread_t(0));
    EXPECT_EQ(thread.routine, nullptr);
    EXPECT_EQ(thread.Join(), nullptr);
    EXPECT_FALSE(thread.SetPriority(7));
    EXPECT_EQ(thread.priority, 7) << "kept all the same";
    EXPECT_EQ(thread.GetPriority(), 0);
    EXPECT_EQ(thread.priority, 0);
}

TEST(PosixThread, RunsWhatADerivedClassDoes) {
    std::atomic<bool> ran{false};
    Running thread([&](Running&) { ran = true; });
    EXPECT_TRUE(thread.Start(3, 0));
    EXPECT_EQ(thread.priority, 3);
    EXPECT_NE(thread.thread, pthread_t(0));
    EXPECT_EQ(thread.Join(), nullptr);
    EXPECT_TRUE(ran);
    EXPECT_EQ(thread.thread, pthread_t(0));
}

TEST(PosixThread, RunsItsRoutineInsteadUntilItIsStopped) {
    std::atomic<int> polls{0};
    Running thread([](Running&) { ADD_FAILURE() << "there is a routine"; });
    thread.routine = poll;
    thread.context = &polls;
    ASSERT_TRUE(thread.Start(0, 0));
    while (polls < 10)
        std::this_thread::yield();
    EXPECT_FALSE(thread.stopRequested);
    thread.Stop();
    EXPECT_TRUE(thread.stopRequested);
    EXPECT_EQ(thread.Join(), nullptr);
    EXPECT_FALSE(thread.stopRequested) << "cleared by joining";
}

TEST(PosixThread, CanBeStartedAgain) {
    std::atomic<int> runs{0};
    Running thread([&](Running& self) {
        EXPECT_FALSE(std::atomic_ref(self.stopRequested).load());
        ++runs;
    });
    for (int i = 1; i <= 3; ++i) {
        thread.Stop();
        EXPECT_TRUE(thread.Start(0, 0));
        thread.Join();
        EXPECT_EQ(runs, i);
    }
}

TEST(PosixThread, StartedTwiceLeavesTheFirstThreadToItself) {
    std::counting_semaphore done{0};
    Running thread([&](Running&) { done.release(); });
    EXPECT_TRUE(thread.Start(0, 0));
    EXPECT_TRUE(thread.Start(0, 0));
    done.acquire();
    done.acquire();
}

TEST(PosixThread, JoiningItselfReturnsAtOnce) {
    std::atomic<bool> returned{false};
    Running thread([&](Running& self) {
        EXPECT_EQ(self.Join(), nullptr);
        returned = true;
    });
    EXPECT_TRUE(thread.Start(0, 0));
    thread.Join();
    EXPECT_TRUE(returned);
}

TEST(PosixThread, TheDestructorStopsAndJoins) {
    std::atomic<int> polls{0};
    {
        Thread thread;
        thread.routine = poll;
        thread.context = &polls;
        ASSERT_TRUE(thread.Start(0, 0));
        while (polls < 10)
            std::this_thread::yield();
    }
    const int seen = polls;
    std::this_thread::yield();
    EXPECT_EQ(polls, seen);
}

TEST(PosixThread, OneThatEndsItselfMayDestroyItsObject) {
    std::binary_semaphore done{0};
    auto* thread = new Thread;
    struct Context {
        std::binary_semaphore& done;
        Thread* thread;
    } context{done, thread};
    thread->routine = [](void* parameter, bool*) {
        auto& self = *static_cast<Context*>(parameter);
        pthread_detach(pthread_self());
        delete self.thread;
        self.done.release();
    };
    thread->context = &context;
    ASSERT_TRUE(thread->Start(0, 0));
    done.acquire();
}

TEST(PosixThread, OrdinaryCodeRunsOnTheSmallestStack) {
    for (unsigned long asked : {0ul, 1ul, 8192ul, 16384ul, 2'000'000ul}) {
        std::atomic<std::size_t> size{0};
        Running thread([&](Running&) {
            std::array<char, 512> buffer{};
            std::snprintf(buffer.data(), buffer.size(), "%.300Lf", 1.0L / 3);
            std::printf("%s\n", buffer.data());
            size = stackSizeOfThisThread();
        });
        ASSERT_TRUE(thread.Start(0, asked));
        thread.Join();
        EXPECT_GE(size, std::max(asked, 512ul * 1024));
    }
}

TEST(PosixThread, ItsAttributesTellTheStackThatWasAskedFor) {
    for (unsigned long asked : {65'536ul, 2'000'000ul}) {
        Running thread([](Running&) {});
        ASSERT_TRUE(thread.Start(0, asked));
        thread.Join();
        std::size_t size = 0;
        EXPECT_EQ(pthread_attr_getstacksize(&thread.attr, &size), 0);
        EXPECT_EQ(size, asked);
    }
}

TEST(PosixThread, TellsWhereTheSystemStartsNone) {
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        const rlimit none{0, 0};
        ASSERT_EQ(setrlimit(RLIMIT_NPROC, &none), 0);
        Thread thread;
        EXPECT_FALSE(thread.Start(0, 0));
        EXPECT_EQ(thread.thread, pthread_t(0));
        EXPECT_EQ(thread.Join(), nullptr);
    }));
}

TEST(PosixThread, WithoutAnObjectNothingRuns) {
    EXPECT_EQ(Thread::threadProc(nullptr), nullptr);
}

TEST(PosixThread, ItsNumberIsTheSystemsCutTo32Bits) {
    EXPECT_EQ(Thread::GetCurrentId(), static_cast<unsigned>(pthread_self()));
}

TEST(PosixThread, TheRangeOfPrioritiesIsTheSystems) {
    EXPECT_EQ(Thread::sPriorityMin, sched_get_priority_min(SCHED_OTHER));
    EXPECT_EQ(Thread::sPriorityMax, sched_get_priority_max(SCHED_OTHER));
}

TEST(PosixThread, PrioritiesAreSpreadOverTheSystemsRange) {
    const PriorityRange range(15, 47);
    const std::array<std::array<int, 2>, 9> rows{{
        {-16, 15},
        {-15, 15},
        {-14, 16},
        {0, 31},
        {1, 32},
        {14, 46},
        {15, 47},
        {16, 47},
        {20, 47},
    }};
    for (const auto& [priority, native] : rows)
        EXPECT_EQ(Thread::pr2native(priority), native) << priority;
}

TEST(PosixThread, PrioritiesAreMappedAsWrittenForEveryRange) {
    for (int min : {0, 1, -20}) {
        for (int size : {0, 1, 7, 30, 98}) {
            const PriorityRange range(min, min + size);
            EXPECT_EQ(Thread::pr2native(0), min + ((30 * size) / 30 + 1) / 2);
            EXPECT_EQ(Thread::pr2native(-15), min);
            EXPECT_EQ(Thread::pr2native(15), min + size);
            EXPECT_EQ(Thread::pr2native(-1000), min);
            EXPECT_EQ(Thread::pr2native(1000), min + size);
        }
    }
}

TEST(PosixThread, TheSystemsOnlyPriorityIsZero) {
    std::binary_semaphore mayEnd{0};
    Running thread([&](Running&) { mayEnd.acquire(); });
    ASSERT_TRUE(thread.Start(9, 0));
    EXPECT_EQ(thread.GetPriority(), 0);
    EXPECT_EQ(thread.priority, 0);
    EXPECT_TRUE(thread.SetPriority(5));
    EXPECT_EQ(thread.priority, 5);
    mayEnd.release();
}

TEST(PosixThread, ThePriorityReadIsTheCallingThreads) {
    std::binary_semaphore mayEnd{0};
    Running thread([&](Running&) { mayEnd.acquire(); });
    ASSERT_TRUE(thread.Start(0, 0));
    // The calling thread's native priority is 0: the place of 0 in these ranges.
    const std::array<std::array<int, 3>, 5> rows{{
        {0, 30, -15},
        {-30, 0, 15},
        {-15, 15, 0},
        {-20, 10, 5},
        {-1, 2, -5},
    }};
    for (const auto& [min, max, place] : rows) {
        const PriorityRange range(min, max);
        EXPECT_EQ(thread.GetPriority(), place) << min << ' ' << max;
        EXPECT_EQ(thread.priority, place);
    }
    mayEnd.release();
}

TEST(PosixThread, APriorityThatTheSystemRefusesIsKeptAllTheSame) {
    const PriorityRange range(0, 30);
    std::binary_semaphore mayEnd{0};
    Running thread([&](Running&) { mayEnd.acquire(); });
    ASSERT_TRUE(thread.Start(-15, 0));
    EXPECT_FALSE(thread.SetPriority(15));
    EXPECT_EQ(thread.priority, 15);
    mayEnd.release();
}
