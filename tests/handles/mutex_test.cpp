#include "common/blocking.h"
#include "common/child.h"
#include "fakes/sleeplessclock.h"
#include "handles/mutexes.h"

#include <KxQts/handles/event.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <string>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

using Korvex::WMutex;
using KxTest::BlockingThread;
using KxTest::leaveKeptLock;
using KxTest::makeUnnamed;
using KxTest::objectBehind;
using KxTest::setOf;
using KxTest::SleeplessClock;
using KxTest::valueOf;
using std::chrono::milliseconds;
using Name = KxTest::MutexName;

TEST(Mutex, AnUnnamedOneStartsFreeWhoeverAsksToOwnIt) {
    for (BOOL initialOwner : {FALSE, TRUE}) {
        HANDLE mutex = CreateMutexA(nullptr, initialOwner, nullptr);
        ASSERT_NE(mutex, nullptr);
        EXPECT_EQ(valueOf(mutex), 1);
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(valueOf(mutex), 0);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_EQ(valueOf(mutex), 1);
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

TEST(Mutex, AnUnnamedOneIsASetOfItsOwnThatEverybodyMayUseAndGoesWithItsHandle) {
    HANDLE mutex = CreateMutexW(nullptr, FALSE, L"");
    const WMutex& object = *objectBehind(mutex);
    EXPECT_EQ(object.objectName(), "WMutex");
    EXPECT_EQ(object.refCount, 1);
    EXPECT_TRUE(object.name.isEmpty());
    EXPECT_TRUE(object.sysV);
    const int set = setOf(mutex);
    semid_ds facts{};
    ASSERT_EQ(semctl(set, 0, IPC_STAT, &facts), 0);
    EXPECT_EQ(facts.sem_nsems, 1u);
    EXPECT_EQ(facts.sem_perm.mode & 0777, 0666);
    HANDLE other = makeUnnamed();
    EXPECT_NE(setOf(other), set);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_TRUE(CloseHandle(other));
    EXPECT_EQ(semctl(set, 0, GETVAL), -1);
}

TEST(Mutex, ErrnoIsLeftAloneWhenANewOneIsMade) {
    const Name name;
    for (const char* each : {static_cast<const char*>(name), static_cast<const char*>(nullptr)}) {
        errno = 99;
        HANDLE mutex = CreateMutexA(nullptr, FALSE, each);
        EXPECT_EQ(errno, 99);
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

TEST(Mutex, AFiniteWaitForAnUnnamedOneMakesItsTriesAndTimesOut) {
    HANDLE mutex = makeUnnamed();
    for (DWORD ms : {0u, 1u, 5u}) {
        SleeplessClock clock;
        EXPECT_EQ(WaitForSingleObject(mutex, ms), WAIT_TIMEOUT);
        EXPECT_EQ(clock.sleeps(), std::vector<std::chrono::microseconds>(ms + 1, milliseconds(1)));
    }
    EXPECT_EQ(valueOf(mutex), 1) << "nothing was taken";
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, AWaitOfNoTimeForANamedOneIsOneTryWithoutAPause) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    SleeplessClock clock;
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(clock.sleeps().empty());
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, AFiniteWaitForANamedOneTriesOnceMoreThanItHasMilliseconds) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    {
        SleeplessClock clock;
        EXPECT_EQ(WaitForSingleObject(mutex, 5), WAIT_TIMEOUT);
        EXPECT_EQ(clock.sleeps(), std::vector<std::chrono::microseconds>(6, milliseconds(1)));
    }
    for (std::size_t pause : {5u, 6u}) { // released while it pauses behind this try
        SleeplessClock clock;
        clock.onSleep = [&] {
            if (clock.sleeps().size() == pause)
                ReleaseMutex(mutex);
        };
        EXPECT_EQ(WaitForSingleObject(mutex, 5), pause == 5 ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
    }
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, AFiniteWaitTakesAboutItsTime) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(mutex, 10), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(11));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, WaitTimesWithTheSignBitAreRefusedWithoutATry) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    EXPECT_EQ(WaitForSingleObject(mutex, 0x80000000u), WAIT_FAILED);
    EXPECT_EQ(WaitForSingleObject(mutex, 0xFFFFFFFEu), WAIT_FAILED);
    EXPECT_EQ(name.count(), 1);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, AnEndlessWaitGoesOnWhenAnotherThreadReleases) {
    const Name name;
    for (const char* each : {static_cast<const char*>(name), static_cast<const char*>(nullptr)}) {
        HANDLE mutex = CreateMutexA(nullptr, FALSE, each);
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        BlockingThread waiter(
            [&] { EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0); });
        waiter.waitUntilBlocked();
        EXPECT_FALSE(waiter.isOver());
        EXPECT_TRUE(ReleaseMutex(mutex));
        waiter.join();
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

TEST(Mutex, ASignalDoesNotEndAnEndlessWait) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction before {};
    sigaction(SIGUSR1, &action, &before);
    const Name name;
    for (const char* each : {static_cast<const char*>(name), static_cast<const char*>(nullptr)}) {
        HANDLE mutex = CreateMutexA(nullptr, FALSE, each);
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        std::atomic<pthread_t> thread{0};
        BlockingThread waiter([&] {
            thread = pthread_self();
            EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        });
        thread.wait(0);
        for (int i = 0; i < 10; ++i) {
            waiter.waitUntilBlocked();
            pthread_kill(thread, SIGUSR1);
        }
        EXPECT_TRUE(ReleaseMutex(mutex));
        waiter.join();
        EXPECT_TRUE(CloseHandle(mutex));
    }
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(Mutex, ReleasingAFreeOneLetsTwoTakersIn) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, AnybodyMayReleaseIt) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    std::thread([&] { EXPECT_TRUE(ReleaseMutex(mutex)); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, WhatIsNoLiveMutexIsRefused) {
    HANDLE mutex = makeUnnamed();
    HANDLE event = CreateEventA(nullptr, FALSE, TRUE, nullptr);
    EXPECT_TRUE(CloseHandle(mutex));
    for (HANDLE each : {HANDLE(nullptr), INVALID_HANDLE_VALUE, mutex, event}) {
        auto* object = static_cast<WMutex*>(each);
        EXPECT_FALSE(ReleaseMutex(each));
        EXPECT_FALSE(WMutex::free(object));
        EXPECT_FALSE(WMutex::wait(object, 0));
        errno = 77;
        EXPECT_FALSE(WMutex::dispose(object));
        EXPECT_EQ(errno, 77);
    }
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_FAILED);
    errno = 0;
    EXPECT_FALSE(CloseHandle(mutex));
    EXPECT_EQ(errno, 22);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Mutex, ASetRemovedByOthersFailsWithTheSystemsNumber) {
    HANDLE mutex = makeUnnamed();
    semctl(setOf(mutex), 0, IPC_RMID);
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, ClosingAnUnnamedOneEndsTheWaitsForIt) {
    HANDLE mutex = makeUnnamed();
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    BlockingThread waiter([&] { EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_TIMEOUT); });
    waiter.waitUntilBlocked();
    EXPECT_TRUE(CloseHandle(mutex));
    waiter.join();
}

TEST(Mutex, ANamedOneThatIsClosedCanStillBeWaitedForToTheEnd) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    BlockingThread waiter([&] { EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0); });
    waiter.waitUntilBlocked();
    EXPECT_TRUE(CloseHandle(mutex));
    name.post();
    waiter.join();
}

TEST(Mutex, AThreadTerminatedInAWaitLeavesNoLockHeldAndNoSignalTaken) {
    const Name name;
    HANDLE named = CreateMutexA(nullptr, TRUE, name);
    HANDLE unnamed = makeUnnamed();
    EXPECT_EQ(WaitForSingleObject(unnamed, INFINITE), WAIT_OBJECT_0);
    for (HANDLE mutex : {named, unnamed}) {
        for (DWORD ms : {DWORD(INFINITE), 1'000'000u}) {
            BlockingThread waiter([&] { WaitForSingleObject(mutex, ms); });
            waiter.terminate();
            EXPECT_FALSE(waiter.isOver());
        }
        EXPECT_TRUE(ReleaseMutex(mutex));
    }
    EXPECT_EQ(name.count(), 1);
    EXPECT_EQ(valueOf(unnamed), 1);
    std::thread([&] { // the class lock is free
        EXPECT_TRUE(CloseHandle(named));
        EXPECT_TRUE(CloseHandle(unnamed));
    })
        .join();
}

TEST(Mutex, AThreadThatWaitsForTheKeptLockCanBeTerminated) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, name), mutex);
    BlockingThread waiter([&] { ReleaseMutex(mutex); });
    waiter.terminate();
    EXPECT_FALSE(waiter.isOver());
    leaveKeptLock();
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, TheSystemTakesBackWhatAnEndedProcessHeldOfAnUnnamedOne) {
    HANDLE mutex = makeUnnamed();
    EXPECT_TRUE(
        KxTest::inChild([&] { EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0); }));
    EXPECT_EQ(valueOf(mutex), 1);
    EXPECT_TRUE(KxTest::inChild([&] { EXPECT_TRUE(ReleaseMutex(mutex)); }));
    EXPECT_EQ(valueOf(mutex), 1);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, TheFirstSetOfAMachineIsNotUsedAndNotLeftBehind) {
    EXPECT_TRUE(KxTest::inFreshIpcNamespace([] {
        HANDLE mutex = CreateMutexA(nullptr, TRUE, nullptr);
        ASSERT_NE(mutex, nullptr);
        EXPECT_GT(setOf(mutex), 0);
        EXPECT_EQ(valueOf(mutex), 1);
        EXPECT_EQ(semctl(0, 0, GETVAL), -1) << "identifier 0 is not in use";
        EXPECT_TRUE(CloseHandle(mutex));
    }));
}

TEST(Mutex, AMachineWithoutSetsGivesNoMutex) {
    EXPECT_TRUE(KxTest::inFreshIpcNamespace([] {
        HANDLE first = makeUnnamed();
        // At most one set in this namespace.
        std::ofstream("/proc/sys/kernel/sem") << "32000 1024000000 500 1" << std::flush;
        errno = 0;
        HANDLE second = makeUnnamed();
        EXPECT_EQ(second, nullptr);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_EQ(WMutex::sObjectList.size(), 1u);
        EXPECT_TRUE(CloseHandle(first));
    }));
}

TEST(Mutex, OneThatAClientMakesIsInNoRegistryAndOwnsItsSemaphore) {
    const int set = semget(IPC_PRIVATE, 1, IPC_CREAT | 0600);
    {
        WMutex mutex(static_cast<unsigned int>(set), "some name", true);
        EXPECT_TRUE(WMutex::sObjectList.isEmpty());
        EXPECT_EQ(mutex.name, "some name");
        EXPECT_FALSE(WMutex::wait(&mutex, INFINITE)) << "the static form looks it up";
        EXPECT_TRUE(mutex.free());
        EXPECT_TRUE(mutex.wait(INFINITE));
        EXPECT_EQ(semctl(set, 0, GETVAL), 0);
    }
    EXPECT_EQ(semctl(set, 0, GETVAL), -1);
}

TEST(Mutex, TheRegistryHoldsThemInTheOrderOfTheirCreation) {
    const Name name;
    HANDLE first = makeUnnamed();
    HANDLE second = CreateMutexA(nullptr, FALSE, name);
    EXPECT_EQ(WMutex::sObjectList.at(0), first);
    EXPECT_EQ(WMutex::sObjectList.at(1), second);
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_EQ(WMutex::sObjectList.at(0), second);
    EXPECT_TRUE(CloseHandle(second));
}
