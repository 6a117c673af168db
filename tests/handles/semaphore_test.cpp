#include "common/blocking.h"
#include "common/child.h"
#include "common/scratchfile.h"
#include "common/unprivileged.h"

#include <KxQts/handles/semaphore.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/ipc.h>
#include <sys/sem.h>

using Korvex::Semaphore;
using KxTest::BlockingThread;

namespace {

constexpr int key = 0x4B785173;

int valueOf(const Semaphore& semaphore) {
    return semctl(semaphore.semId, 0, GETVAL);
}

/// Removes the set when the test ends, also when it fails.
class Removed : public Semaphore {
public:
    using Semaphore::Semaphore;
    ~Removed() { Remove(); }
};

} // namespace

TEST(Semaphore, OneThatIsMadeStartsAtZero) {
    Removed semaphore(key);
    EXPECT_EQ(semaphore.state, 1);
    EXPECT_EQ(semaphore.lastError, 0);
    EXPECT_GT(semaphore.semId, 0);
    EXPECT_EQ(valueOf(semaphore), 0);
    semid_ds facts{};
    ASSERT_EQ(semctl(semaphore.semId, 0, IPC_STAT, &facts), 0);
    EXPECT_EQ(facts.sem_nsems, 1u);
    EXPECT_EQ(facts.sem_perm.mode & 0777, 0666);
}

TEST(Semaphore, OneThatExistsIsOpened) {
    Removed first(key);
    Semaphore second(key);
    EXPECT_EQ(second.state, 2);
    EXPECT_EQ(second.lastError, 0);
    EXPECT_EQ(second.semId, first.semId);
    EXPECT_EQ(second.Create(key), 2);
}

TEST(Semaphore, KeyZeroIsPrivate) {
    Removed first(0);
    Removed second(0);
    EXPECT_EQ(first.state, 1);
    EXPECT_EQ(second.state, 1);
    EXPECT_NE(first.semId, second.semId);
}

TEST(Semaphore, APathAndANumberMakeAKey) {
    const KxTest::ScratchFile file("contents");
    Removed first(file.name.c_str(), 5);
    Semaphore same(file.name.c_str(), 5);
    Removed other(file.name.c_str(), 6);
    EXPECT_EQ(first.state, 1);
    EXPECT_EQ(same.state, 2);
    EXPECT_EQ(same.semId, first.semId);
    EXPECT_EQ(other.state, 1);
    EXPECT_NE(other.semId, first.semId);
    Semaphore byKey(ftok(file.name.c_str(), 5));
    EXPECT_EQ(byKey.semId, first.semId);
}

TEST(Semaphore, WithoutAPathItIsPrivate) {
    for (const char* path : {static_cast<const char*>(nullptr), ""}) {
        Removed first(path, 1);
        Removed second(path, 1);
        EXPECT_EQ(first.state, 1);
        EXPECT_NE(first.semId, second.semId);
    }
}

TEST(Semaphore, APathThatDoesNotExistMakesItUnusable) {
    Semaphore semaphore("no such file", 1);
    EXPECT_EQ(semaphore.state, 0);
    EXPECT_EQ(semaphore.lastError, ENOENT);
    semaphore.lastError = 77;
    EXPECT_FALSE(semaphore.Wait());
    EXPECT_FALSE(semaphore.TryWait());
    EXPECT_FALSE(semaphore.Release(1, false));
    EXPECT_FALSE(semaphore.Remove());
    EXPECT_EQ(semaphore.lastError, 77) << "nothing was tried";
}

TEST(Semaphore, WhatIsReleasedCanBeTaken) {
    Removed semaphore(key);
    EXPECT_TRUE(semaphore.Release(2, false));
    EXPECT_EQ(valueOf(semaphore), 2);
    EXPECT_TRUE(semaphore.Wait());
    EXPECT_TRUE(semaphore.TryWait());
    EXPECT_EQ(semaphore.lastError, 0);
    EXPECT_FALSE(semaphore.TryWait());
    EXPECT_EQ(semaphore.lastError, 35);
    EXPECT_TRUE(semaphore.Release(1, true));
    EXPECT_EQ(semaphore.lastError, 0);
    EXPECT_EQ(valueOf(semaphore), 1);
}

TEST(Semaphore, TheFirstWaitBlocksUntilSomebodyReleases) {
    Removed semaphore(key);
    BlockingThread waiter([] {
        Semaphore same(key);
        EXPECT_TRUE(same.Wait());
    });
    waiter.waitUntilBlocked();
    EXPECT_FALSE(waiter.isOver());
    EXPECT_TRUE(semaphore.Release(1, false));
    waiter.join();
    EXPECT_EQ(valueOf(semaphore), 0);
}

TEST(Semaphore, ASignalEndsTheWaitWithoutSuccess) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction before {};
    sigaction(SIGUSR1, &action, &before);
    Removed semaphore(key);
    std::atomic<pthread_t> thread{0};
    BlockingThread waiter([&] {
        thread = pthread_self();
        EXPECT_FALSE(semaphore.Wait());
        EXPECT_EQ(semaphore.lastError, EINTR);
    });
    while (thread == pthread_t(0))
        std::this_thread::yield();
    while (!waiter.isOver()) {
        waiter.waitUntilBlocked();
        pthread_kill(thread, SIGUSR1);
        std::this_thread::yield();
    }
    waiter.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(Semaphore, TheSystemTakesBackWhatAnEndedProcessDidWhereItIsAskedTo) {
    Removed semaphore(key);
    EXPECT_TRUE(semaphore.Release(5, false));
    EXPECT_TRUE(KxTest::inChild([&] {
        EXPECT_TRUE(semaphore.Wait());
        EXPECT_TRUE(semaphore.TryWait());
    }));
    EXPECT_EQ(valueOf(semaphore), 5);
    EXPECT_TRUE(KxTest::inChild([&] { EXPECT_TRUE(semaphore.Release(2, true)); }));
    EXPECT_EQ(valueOf(semaphore), 5);
    EXPECT_TRUE(KxTest::inChild([&] { EXPECT_TRUE(semaphore.Release(2, false)); }));
    EXPECT_EQ(valueOf(semaphore), 7);
}

TEST(Semaphore, ReleasingNoneChangesNothingAndTooManyFail) {
    Removed semaphore(key);
    EXPECT_TRUE(semaphore.Release(1, false));
    EXPECT_TRUE(semaphore.Release(0, false));
    EXPECT_EQ(valueOf(semaphore), 1);
    EXPECT_FALSE(semaphore.Release(32768, false));
    EXPECT_EQ(semaphore.lastError, ERANGE);
    EXPECT_FALSE(semaphore.Release(32767, false)) << "32768 in all";
    EXPECT_EQ(semaphore.lastError, ERANGE);
    EXPECT_TRUE(semaphore.Release(32766, false));
    EXPECT_EQ(valueOf(semaphore), 32767);
}

TEST(Semaphore, RemovingEndsWaitsAndFurtherUse) {
    Semaphore semaphore(key);
    BlockingThread waiter([] {
        Semaphore same(key);
        EXPECT_FALSE(same.Wait());
        EXPECT_EQ(same.lastError, EIDRM);
    });
    waiter.waitUntilBlocked();
    EXPECT_TRUE(semaphore.Remove());
    EXPECT_EQ(semaphore.lastError, 0);
    waiter.join();
    EXPECT_FALSE(semaphore.Remove());
    EXPECT_EQ(semaphore.lastError, EINVAL);
    EXPECT_FALSE(semaphore.TryWait());
    EXPECT_EQ(semaphore.lastError, EINVAL);
}

TEST(Semaphore, NothingIsRemovedWithTheObject) {
    int identifier = -1;
    {
        Semaphore semaphore(key);
        identifier = semaphore.semId;
    }
    EXPECT_EQ(semctl(identifier, 0, GETVAL), 0);
    Removed again(key);
    EXPECT_EQ(again.state, 2);
}

TEST(Semaphore, OneThatMayNotBeOpenedIsUnusable) {
    Removed semaphore(key);
    semid_ds facts{};
    ASSERT_EQ(semctl(semaphore.semId, 0, IPC_STAT, &facts), 0);
    facts.sem_perm.mode = 0;
    ASSERT_EQ(semctl(semaphore.semId, 0, IPC_SET, &facts), 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        Semaphore refused(key);
        EXPECT_EQ(refused.state, 0);
        EXPECT_EQ(refused.lastError, EACCES);
        EXPECT_FALSE(refused.TryWait());
    }));
}

TEST(Semaphore, TheFirstSetOfAMachineIsNotUsed) {
    EXPECT_TRUE(KxTest::inFreshIpcNamespace([] {
        Semaphore semaphore(key);
        EXPECT_EQ(semaphore.state, 1);
        EXPECT_GT(semaphore.semId, 0);
        EXPECT_EQ(semctl(0, 0, GETVAL), -1) << "identifier 0 is not in use";
        EXPECT_EQ(semget(key, 1, 0), semaphore.semId) << "the key finds the one that is kept";
        EXPECT_TRUE(semaphore.Remove());
    }));
    EXPECT_TRUE(KxTest::inFreshIpcNamespace([] {
        Semaphore semaphore(0);
        EXPECT_GT(semaphore.semId, 0);
        EXPECT_EQ(semctl(0, 0, GETVAL), -1);
    }));
}
