#include "common/blocking.h"
#include "common/child.h"
#include "fakes/sleeplessclock.h"
#include "platform/lock.h"

#include <KxQts/handles/event.h>
#include <KxQts/handles/mutex.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/mutexes.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <semaphore.h>
#include <string>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

using Korvex::WMutex;
using KxTest::BlockingThread;
using KxTest::SleeplessClock;
using std::chrono::milliseconds;

namespace {

/// A name for mutexes, taken out of the system when the test ends.
class Name {
public:
    explicit Name(std::string toUse = "/kxqts-mutex") : text(std::move(toUse)) {}
    ~Name() { sem_unlink(text.c_str()); }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

    operator const char*() const { return text.c_str(); }

    [[nodiscard]] bool existsInSystem() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        if (semaphore == SEM_FAILED)
            return false;
        sem_close(semaphore);
        return true;
    }
    void make(unsigned count) const {
        sem_close(sem_open(text.c_str(), O_CREAT | O_EXCL, 0600, count));
    }
    [[nodiscard]] int count() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        int value = -1;
        sem_getvalue(semaphore, &value);
        sem_close(semaphore);
        return value;
    }
    void post() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        sem_post(semaphore);
        sem_close(semaphore);
    }

private:
    std::string text;
};

WMutex* objectBehind(HANDLE handle) {
    return static_cast<WMutex*>(handle);
}

int setOf(HANDLE unnamed) {
    return static_cast<int>(objectBehind(unnamed)->semHandle);
}

int valueOf(HANDLE unnamed) {
    return semctl(setOf(unnamed), 0, GETVAL);
}

HANDLE makeUnnamed() {
    return CreateMutexA(nullptr, FALSE, nullptr);
}

/// Leaves the class lock that a reused name has left held.
void leaveKeptLock() KXQTS_UNCHECKED_LOCKING {
    WMutex::sCritSect.unlock();
}

} // namespace

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

TEST(Mutex, ANamedOneIsASemaphoreThatOutlivesItsHandle) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    const WMutex& object = *objectBehind(mutex);
    EXPECT_FALSE(object.sysV);
    EXPECT_EQ(object.name, "/kxqts-mutex");
    EXPECT_NE(object.semHandle, 0u);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_TRUE(name.existsInSystem());
    EXPECT_EQ(name.count(), 0) << "left as taken as it was";
}

TEST(Mutex, ANewNamedOneStartsTakenWhenItsMakerAsksToOwnIt) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    EXPECT_EQ(name.count(), 0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, OneThatExistsInTheSystemIsJoinedAsItIs) {
    const Name name;
    name.make(0);
    errno = 0;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    ASSERT_NE(mutex, nullptr);
    EXPECT_EQ(errno, 17);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    name.post();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, OneThatExistsInTheSystemIsNeverJoinedByWhoAsksToOwnIt) {
    const Name name;
    name.make(1);
    errno = 0;
    EXPECT_EQ(CreateMutexA(nullptr, TRUE, name), nullptr);
    EXPECT_EQ(errno, 17);
    EXPECT_EQ(name.count(), 1);
    EXPECT_TRUE(WMutex::sObjectList.isEmpty());
}

TEST(Mutex, AnotherProcessSharesTheNamedOne) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, TRUE, name);
    EXPECT_TRUE(KxTest::inChild([&] {
        // A process of its own: nothing of this one's registry.
        WMutex::dispose(objectBehind(mutex));
        HANDLE same = CreateMutexA(nullptr, FALSE, name);
        EXPECT_EQ(errno, 17);
        EXPECT_EQ(WaitForSingleObject(same, 0), WAIT_TIMEOUT);
        EXPECT_TRUE(ReleaseMutex(same));
    }));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, ANameOfThisProcessIsReusedAndClosedOnceForEachTime) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    errno = 0;
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, L"/kxqts-mutex"), mutex);
    EXPECT_EQ(errno, 17);
    leaveKeptLock();
    errno = 0;
    EXPECT_EQ(CreateMutexA(nullptr, TRUE, name), mutex) << "also by who asks to own it";
    EXPECT_EQ(errno, 17);
    leaveKeptLock();
    EXPECT_EQ(objectBehind(mutex)->refCount, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(WMutex::sObjectList.size(), 1u);
        EXPECT_TRUE(CloseHandle(mutex));
    }
    EXPECT_TRUE(WMutex::sObjectList.isEmpty());
    EXPECT_FALSE(CloseHandle(mutex));
}

TEST(Mutex, GetTellsReuseFromANewOneAndFromFailure) {
    const Name name;
    WMutex* mutex = nullptr;
    EXPECT_EQ(WMutex::get(false, "/kxqts-mutex", &mutex), 0);
    ASSERT_NE(mutex, nullptr);
    WMutex* same = nullptr;
    EXPECT_EQ(WMutex::get(false, "/kxqts-mutex", &same), 1);
    leaveKeptLock();
    EXPECT_EQ(same, mutex);
    EXPECT_TRUE(WMutex::dispose(mutex));
    EXPECT_TRUE(WMutex::dispose(mutex));
    same = mutex;
    EXPECT_EQ(WMutex::get(true, "/kxqts-mutex", &same), 0);
    EXPECT_EQ(same, nullptr);
}

TEST(Mutex, ReuseKeepsTheClassLockForTheThreadThatAsked) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    HANDLE other = makeUnnamed();
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, name), mutex);
    // This thread goes on.
    EXPECT_EQ(WaitForSingleObject(other, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
    // Others do not.
    BlockingThread waiter([&] { EXPECT_TRUE(ReleaseMutex(other)); });
    waiter.waitUntilBlocked();
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_FALSE(waiter.isOver());
    leaveKeptLock();
    waiter.join();
    EXPECT_TRUE(CloseHandle(other));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutex, EveryOtherWayLeavesTheClassLock) {
    const Name name;
    const Name owned("/kxqts-owned");
    owned.make(1);
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    HANDLE unnamed = makeUnnamed();
    EXPECT_EQ(CreateMutexA(nullptr, TRUE, owned), nullptr);
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, "/no/such"), nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_FALSE(ReleaseMutex(nullptr));
    std::thread([&] {
        EXPECT_TRUE(CloseHandle(unnamed));
        EXPECT_TRUE(CloseHandle(mutex));
    }).join();
}

TEST(Mutex, NamesThatTheSystemRefusesGiveItsErrno) {
    for (const std::string& name : {std::string("/a/b"), std::string("/"), std::string(300, 'x')}) {
        errno = 0;
        ASSERT_EQ(sem_open(name.c_str(), O_CREAT | O_EXCL, 0666, 1), SEM_FAILED);
        const int expected = errno;
        errno = 0;
        EXPECT_EQ(CreateMutexA(nullptr, FALSE, name.c_str()), nullptr) << name;
        EXPECT_EQ(errno, expected) << name;
        errno = 0;
        EXPECT_EQ(CreateMutexA(nullptr, TRUE, name.c_str()), nullptr) << name;
        EXPECT_EQ(errno, expected) << name;
    }
}

TEST(Mutex, NamesAreLatin1AndEndAtTheirFirstZero) {
    const Name name("/kxqts-m\xFCtex");
    HANDLE mutex = createMutex(false, QString::fromUtf16(u"/kxqts-m\u00FCtex\0rest", 18));
    ASSERT_NE(mutex, nullptr);
    EXPECT_TRUE(name.existsInSystem());
    EXPECT_EQ(objectBehind(mutex)->name, QString::fromUtf16(u"/kxqts-m\u00FCtex"));
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, name), mutex);
    leaveKeptLock();
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
    HANDLE unnamed = createMutex(false, QString(QChar(0)) + "rest");
    EXPECT_TRUE(objectBehind(unnamed)->sysV);
    EXPECT_TRUE(CloseHandle(unnamed));
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
