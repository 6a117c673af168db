// Many threads, one after another and at once, with handles of every kind.

#include "common/resources.h"
#include "platform/lock.h"

#include <KxQts/handles/event.h>
#include <KxQts/handles/mutex.h>
#include <KxQts/handles/thread.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/mutexes.h>
#include <KxQts/winapi/threads.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <random>
#include <semaphore.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using Korvex::WThread;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool memoryIsWatched = true; // by a sanitizer, which keeps what is freed
#else
constexpr bool memoryIsWatched = false;
#endif

std::size_t residentBytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t size = 0;
    std::size_t resident = 0;
    file >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void waitUntilNoneLives() {
    for (;;) {
        {
            const Korvex::LockGuard guard(WThread::sCritSect);
            if (WThread::sThreadList.isEmpty())
                return;
        }
        std::this_thread::yield();
    }
}

sem_t turn;

DWORD post(LPVOID) {
    sem_post(&turn);
    return 0;
}

void startAndClose(int count) {
    for (int i = 0; i < count; ++i) {
        HANDLE thread = CreateThread(nullptr, 0, post, nullptr, 0, nullptr);
        ASSERT_NE(thread, nullptr);
        ASSERT_TRUE(CloseHandle(thread));
        sem_wait(&turn);
    }
    waitUntilNoneLives();
}

constexpr int threadCount = 16;
constexpr std::size_t handleCount = 64;
constexpr auto duration = std::chrono::seconds(3);

std::array<std::atomic<HANDLE>, handleCount> handles;

/// A mutex that is never free.
HANDLE takenMutex = nullptr;

DWORD waitForEver(LPVOID) {
    return WaitForSingleObject(takenMutex, INFINITE);
}

HANDLE makeNamedMutex(bool owned) {
    static std::atomic<int> count{0};
    // Each name once: a second request for one keeps the lock of all mutexes.
    const std::string name = "/kxqts-stress-" + std::to_string(++count);
    HANDLE mutex = CreateMutexA(nullptr, owned ? TRUE : FALSE, name.c_str());
    sem_unlink(name.c_str());
    return mutex;
}

HANDLE makeOne(std::mt19937& random) {
    switch (random() % 5) {
    case 0:
        return CreateMutexA(nullptr, FALSE, nullptr);
    case 1:
        return makeNamedMutex(random() % 2 == 0);
    case 2:
        return CreateThread(nullptr, 0, post, nullptr, 0, nullptr);
    case 3:
        return CreateThread(nullptr, 0, waitForEver, nullptr, 0, nullptr);
    default:
        return CreateEventA(nullptr, FALSE, random() % 2 == 0, nullptr);
    }
}

/// A thread that waits for ever is ended before its handle goes.
void close(HANDLE handle) {
    TerminateThread(handle, 0);
    EXPECT_EQ(CloseHandle(handle), handle ? TRUE : FALSE);
}

void workUntil(std::chrono::steady_clock::time_point end, unsigned seed) {
    std::mt19937 random(seed);
    while (std::chrono::steady_clock::now() < end) {
        std::atomic<HANDLE>& place = handles[random() % handleCount];
        switch (random() % 8) {
        case 0:
            close(place.exchange(makeOne(random)));
            break;
        case 1:
            close(place.exchange(nullptr));
            break;
        case 2:
            TerminateThread(place, 0);
            break;
        case 3:
            ReleaseMutex(place);
            break;
        case 4:
            SetEvent(place);
            break;
        default:
            WaitForSingleObject(place, random() % 2);
            break;
        }
    }
}

} // namespace

TEST(ThreadStress, AHundredThousandThreadsLeaveNothingBehind) {
    sem_init(&turn, 0, 0);
    startAndClose(2000); // what is made once and kept
    const auto before = KxTest::Resources::now();
    const std::size_t bytesBefore = residentBytes();
    startAndClose(100'000);
    // For what the allocators keep by the way; a leak of a few bytes a thread is more.
    constexpr std::size_t allowed = 1'000'000;
    EXPECT_TRUE(memoryIsWatched || residentBytes() <= bytesBefore + allowed)
        << residentBytes() - bytesBefore;
    EXPECT_EQ(KxTest::Resources::now().descriptors, before.descriptors);
    // One thread may be on its way out.
    EXPECT_LE(KxTest::Resources::now().threads.size(), before.threads.size() + 1);
}

TEST(ThreadStress, HandlesOfAllKindsAreUsedAndClosedByManyThreadsAtOnce) {
    sem_init(&turn, 0, 0);
    takenMutex = CreateMutexA(nullptr, FALSE, nullptr);
    EXPECT_EQ(WaitForSingleObject(takenMutex, INFINITE), WAIT_OBJECT_0);
    const auto end = std::chrono::steady_clock::now() + duration;
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < threadCount; ++seed)
        threads.emplace_back(workUntil, end, seed);
    for (std::thread& thread : threads)
        thread.join();
    for (std::atomic<HANDLE>& handle : handles)
        close(handle.exchange(nullptr));
    waitUntilNoneLives();
    EXPECT_TRUE(CloseHandle(takenMutex));
    EXPECT_TRUE(Korvex::WEvent::sObjectList.isEmpty());
    EXPECT_TRUE(Korvex::WMutex::sObjectList.isEmpty());
}

TEST(ThreadStress, ThreadsEndWhileTheirHandlesAreClosed) {
    sem_init(&turn, 0, 0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([end, i] {
            std::mt19937 random(static_cast<unsigned>(i));
            while (std::chrono::steady_clock::now() < end) {
                HANDLE thread = CreateThread(nullptr, 0, post, nullptr, 0, nullptr);
                for (unsigned pause = random() % 20; pause > 0; --pause)
                    std::this_thread::yield();
                EXPECT_TRUE(CloseHandle(thread));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    waitUntilNoneLives();
}
