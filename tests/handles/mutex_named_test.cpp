// Mutexes that have a name.

#include "common/blocking.h"
#include "common/child.h"
#include "common/unprivileged.h"
#include "handles/mutexes.h"

#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <semaphore.h>
#include <string>
#include <sys/stat.h>
#include <thread>

using Korvex::WMutex;
using KxTest::BlockingThread;
using KxTest::leaveKeptLock;
using KxTest::makeUnnamed;
using KxTest::objectBehind;
using std::chrono::milliseconds;
using Name = KxTest::MutexName;

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

TEST(Mutex, EverybodyMayUseANamedOne) {
    const Name name;
    const mode_t mask = umask(0);
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    umask(mask);
    struct stat facts {};
    ASSERT_EQ(stat("/dev/shm/sem.kxqts-mutex", &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0666u);
    EXPECT_TRUE(CloseHandle(mutex));
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

TEST(Mutex, OneThatMayNotBeOpenedIsNotJoined) {
    const Name name;
    name.make(1);
    ASSERT_EQ(chmod("/dev/shm/sem.kxqts-mutex", 0), 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        errno = 0;
        EXPECT_EQ(CreateMutexA(nullptr, FALSE, name), nullptr);
        EXPECT_EQ(errno, EACCES) << "what joining it says";
        EXPECT_EQ(CreateMutexA(nullptr, TRUE, name), nullptr);
        EXPECT_EQ(errno, 17) << "what making it says";
    }));
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
