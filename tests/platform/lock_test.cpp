#include "common/blocking.h"
#include "platform/lock.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <thread>
#include <vector>

using Korvex::Lock;
using Korvex::LockGuard;
using Korvex::Terminably;
using KxTest::BlockingThread;

namespace {

void countUp(Lock& lock, int& count, Terminably how) KXQTS_UNCHECKED_LOCKING {
    for (int i = 0; i < 10'000; ++i) {
        const LockGuard guard(lock, how);
        const LockGuard again(lock, how);
        ++count;
    }
}

} // namespace

TEST(Lock, IsHeldByOneThreadWhichMayTakeItAgain) {
    Lock lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (Terminably how : {Terminably::No, Terminably::Yes, Terminably::No, Terminably::Yes})
        threads.emplace_back([&, how] { countUp(lock, count, how); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 40'000);
}

TEST(Lock, AThreadThatWaitsTerminablyEndsWithoutIt) {
    Lock lock;
    {
        const LockGuard guard(lock);
        BlockingThread waiter([&] { const LockGuard never(lock, Terminably::Yes); });
        waiter.terminate();
        EXPECT_FALSE(waiter.isOver());
    }
    std::thread([&] { const LockGuard guard(lock); }).join();
}

TEST(Lock, ATerminatedThreadLeavesIt) {
    Lock lock;
    std::thread holder([&] {
        const LockGuard guard(lock, Terminably::Yes);
        for (;;)
            pthread_testcancel();
    });
    pthread_cancel(holder.native_handle());
    holder.join();
    std::thread([&] { const LockGuard guard(lock); }).join();
}

TEST(Lock, AThreadThatWaitsTerminablyGetsItInTheEnd) {
    Lock lock;
    lock.lock();
    BlockingThread waiter([&] { const LockGuard guard(lock, Terminably::Yes); });
    waiter.waitUntilBlocked();
    EXPECT_FALSE(waiter.isOver());
    lock.unlock();
    waiter.join();
    EXPECT_TRUE(waiter.isOver());
}
