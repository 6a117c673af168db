// Threads ended by TerminateThread, wherever they are.

#include "common/blocking.h"
#include "common/scratchfile.h"
#include "fakes/peer.h"
#include "platform/lock.h"

#include <KxQts/daemon/session.h>
#include <KxQts/handles/event.h>
#include <KxQts/handles/mutex.h>
#include <KxQts/handles/semaphore.h>
#include <KxQts/handles/thread.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/mutexes.h>
#include <KxQts/winapi/threads.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <random>
#include <semaphore.h>
#include <semaphore>
#include <string>
#include <sys/sem.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using Korvex::WThread;

namespace {

using Work = std::function<void()>;

/// Counts the objects of terminated threads that were destroyed.
struct Unwound {
    explicit Unwound(std::atomic<int>& toCount) : count(toCount) {}
    ~Unwound() { ++count; }
    std::atomic<int>& count;
};

/// A thread that is at work, and blocked in it as soon as it is asked for.
class Worker {
public:
    explicit Worker(Work toDo) : work(std::move(toDo)) {
        handle = CreateThread(nullptr, 0, routine, this, 0, nullptr);
        task.wait(0);
    }
    ~Worker() { EXPECT_TRUE(CloseHandle(handle)); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void waitUntilBlocked() const { KxTest::waitUntilAsleep(task); }

    HANDLE handle;
    std::atomic<bool> returned{false};
    std::atomic<int> unwound{0};

private:
    static DWORD routine(LPVOID parameter) {
        auto& self = *static_cast<Worker*>(parameter);
        const Unwound object(self.unwound);
        self.task = gettid();
        self.task.notify_one();
        self.work();
        self.returned = true;
        return 0;
    }

    Work work;
    std::atomic<pid_t> task{0};
};

void expectTerminable(const char* where, const Work& work) {
    Worker worker(work);
    worker.waitUntilBlocked();
    EXPECT_FALSE(worker.returned) << where;
    EXPECT_TRUE(TerminateThread(worker.handle, 1)) << where;
    EXPECT_FALSE(worker.returned) << where;
    EXPECT_EQ(worker.unwound, 1) << where << ": its objects are destroyed when the call returns";
    EXPECT_FALSE(TerminateThread(worker.handle, 1)) << where << ": it has ended";
}

bool isRegistered(HANDLE thread) {
    const Korvex::LockGuard guard(WThread::sCritSect);
    return WThread::sThreadList.contains(static_cast<WThread*>(thread));
}

} // namespace

TEST(Termination, EndsAThreadThatSleeps) {
    expectTerminable("sleep", [] { sleep(1000); });
}

TEST(Termination, EndsAThreadThatWaitsForAnEvent) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    for (DWORD ms : {DWORD(INFINITE), 1'000'000u})
        expectTerminable("event", [&] { WaitForSingleObject(event, ms); });
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0) << "the signal was left to others";
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Termination, EndsAThreadThatWaitsForAMutex) {
    HANDLE unnamed = CreateMutexA(nullptr, FALSE, nullptr);
    HANDLE named = CreateMutexA(nullptr, TRUE, "/kxqts-termination");
    sem_unlink("/kxqts-termination");
    EXPECT_EQ(WaitForSingleObject(unnamed, INFINITE), WAIT_OBJECT_0);
    for (HANDLE mutex : {unnamed, named}) {
        for (DWORD ms : {DWORD(INFINITE), 1'000'000u})
            expectTerminable("mutex", [&] { WaitForSingleObject(mutex, ms); });
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

TEST(Termination, EndsAThreadWhoseWaitsNeverBlock) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE mutex = CreateMutexA(nullptr, FALSE, "/kxqts-termination");
    sem_unlink("/kxqts-termination");
    for (HANDLE handle : {event, mutex}) {
        std::atomic<int> turns{0};
        Worker worker([&] {
            for (;; ++turns) {
                SetEvent(handle);
                WaitForSingleObject(handle, INFINITE);
                ReleaseMutex(handle);
            }
        });
        while (turns < 10)
            std::this_thread::yield();
        EXPECT_TRUE(TerminateThread(worker.handle, 0));
        EXPECT_EQ(worker.unwound, 1);
    }
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Termination, EndsAThreadThatWaitsForASemaphore) {
    Korvex::Semaphore semaphore(0);
    expectTerminable("semaphore", [&] { semaphore.Wait(); });
    EXPECT_TRUE(semaphore.Release(1, false));
    EXPECT_TRUE(semaphore.TryWait());
    EXPECT_TRUE(semaphore.Remove());
}

TEST(Termination, EndsAThreadThatReadsAFile) {
    const KxTest::ScratchFile fifo;
    ASSERT_EQ(mkfifo(fifo.name.c_str(), 0600), 0);
    // Opened for both, so that opening does not wait for a writer.
    HANDLE file = CreateFileA(fifo.name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, nullptr);
    expectTerminable("read", [&] {
        std::array<char, 10> buffer{};
        ReadFile(file, buffer.data(), buffer.size(), nullptr, nullptr);
    });
    EXPECT_TRUE(CloseHandle(file));
}

TEST(Termination, EndsAThreadThatOpensAFile) {
    const KxTest::ScratchFile fifo;
    ASSERT_EQ(mkfifo(fifo.name.c_str(), 0600), 0);
    expectTerminable("open", [&] {
        CreateFileA(fifo.name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    });
}

TEST(Termination, EndsAThreadThatWaitsForTheAnswerOfADaemon) {
    std::binary_semaphore asked{0};
    std::binary_semaphore left{0};
    constexpr std::size_t requestLength = 24;
    const KxTest::Peer silent(0, [&](KxTest::Connection& connection) {
        connection.read(requestLength);
        asked.release();
        connection.readToEnd();
        left.release();
    });
    Worker worker(
        [&] { daemonSession(silent.port(), 1, 1000, nullptr, 0, nullptr, 0, nullptr, nullptr); });
    asked.acquire();
    worker.waitUntilBlocked();
    EXPECT_TRUE(TerminateThread(worker.handle, 0));
    EXPECT_FALSE(worker.returned);
    EXPECT_EQ(worker.unwound, 1);
    left.acquire(); // the connection went with the thread
}

TEST(Termination, EndsAThreadThatWaitsForTheLockOfItsClass) {
    Worker sleeper([] { sleep(1000); });
    {
        // The holder of the lock ends a thread that wants it.
        const Korvex::LockGuard guard(WThread::sCritSect);
        expectTerminable("lock", [&] { TerminateThread(sleeper.handle, 0); });
    }
    EXPECT_TRUE(isRegistered(sleeper.handle));
    EXPECT_TRUE(TerminateThread(sleeper.handle, 0));
}

TEST(Termination, TwoThreadsThatTerminateEachOtherDoNotLockUp) {
    for (int round = 0; round < 50; ++round) {
        std::array<std::atomic<HANDLE>, 2> threads{};
        const auto killer = [&](std::size_t victim) {
            while (!threads[victim])
                std::this_thread::yield();
            TerminateThread(threads[victim], 0);
        };
        Worker one([&] { killer(1); });
        Worker other([&] { killer(0); });
        threads[0] = one.handle;
        threads[1] = other.handle;
        while (isRegistered(one.handle) || isRegistered(other.handle))
            std::this_thread::yield();
        EXPECT_TRUE(one.returned || other.returned);
    }
}

TEST(Termination, AThreadThatTerminatesItselfEndsThere) {
    std::atomic<HANDLE> handle{nullptr};
    Worker worker([&] {
        while (!handle)
            std::this_thread::yield();
        TerminateThread(handle, 0);
    });
    handle = worker.handle;
    while (isRegistered(worker.handle))
        std::this_thread::yield();
    EXPECT_FALSE(worker.returned);
    EXPECT_EQ(worker.unwound, 1);
}

TEST(Termination, TheHandleIsTheCallersToClose) {
    Worker worker([] { sleep(1000); });
    EXPECT_TRUE(TerminateThread(worker.handle, 0));
    EXPECT_FALSE(isRegistered(worker.handle));
    EXPECT_TRUE(CloseHandle(worker.handle));
    EXPECT_FALSE(CloseHandle(worker.handle));
    worker.handle = CreateEventA(nullptr, FALSE, FALSE, nullptr); // something to close
}

TEST(Termination, AClosedThreadIsNoHandleToTerminate) {
    std::binary_semaphore mayEnd{0};
    HANDLE thread = CreateThread(
        nullptr, 0,
        [](LPVOID semaphore) -> DWORD {
            static_cast<std::binary_semaphore*>(semaphore)->acquire();
            return 0;
        },
        &mayEnd, 0, nullptr);
    EXPECT_TRUE(CloseHandle(thread));
    // It is still registered, so it can still be ended; afterwards nothing is left of it.
    EXPECT_TRUE(isRegistered(thread));
    mayEnd.release();
    while (isRegistered(thread))
        std::this_thread::yield();
    EXPECT_FALSE(TerminateThread(thread, 0));
}

TEST(Termination, AClosedThreadThatRunsCanStillBeTerminated) {
    HANDLE thread = CreateThread(
        nullptr, 0, [](LPVOID) -> DWORD { return sleep(1000); }, nullptr, 0, nullptr);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_TRUE(TerminateThread(thread, 0));
    EXPECT_FALSE(isRegistered(thread));
    EXPECT_FALSE(CloseHandle(thread));
}

TEST(Termination, HoldsTheLockOfTheClassWhileItWaits) {
    std::binary_semaphore ending{0};
    std::binary_semaphore mayEnd{0};
    struct SlowEnd {
        ~SlowEnd() {
            ending.release();
            mayEnd.acquire();
        }
        std::binary_semaphore& ending;
        std::binary_semaphore& mayEnd;
    };
    Worker worker([&] {
        const SlowEnd object{ending, mayEnd};
        sleep(1000);
    });
    KxTest::BlockingThread killer([&] { EXPECT_TRUE(TerminateThread(worker.handle, 0)); });
    ending.acquire();
    KxTest::BlockingThread other([&] { EXPECT_FALSE(TerminateThread(worker.handle, 0)); });
    other.waitUntilBlocked();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(killer.isOver());
    EXPECT_FALSE(other.isOver());
    mayEnd.release();
}

TEST(Termination, AtTheMomentOfTheThreadsOwnEnd) {
    std::mt19937 random(1);
    for (int round = 0; round < 1500; ++round) {
        const unsigned pause = random() % 100;
        HANDLE thread = CreateThread(
            nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr);
        ASSERT_NE(thread, nullptr);
        for (unsigned i = 0; i < pause; ++i)
            std::this_thread::yield();
        TerminateThread(thread, 0); // has ended or is ended here
        ASSERT_FALSE(TerminateThread(thread, 0));
        ASSERT_TRUE(CloseHandle(thread));
        ASSERT_FALSE(CloseHandle(thread));
    }
}

TEST(Termination, AtAnyMomentOfAWaitForAMutex) {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    const int set = static_cast<int>(static_cast<Korvex::WMutex*>(mutex)->semHandle);
    for (int round = 0; round < 200; ++round) {
        std::atomic<int> turns{0};
        Worker worker([&] {
            for (;; ++turns) {
                WaitForSingleObject(mutex, INFINITE);
                ReleaseMutex(mutex);
            }
        });
        while (turns < round % 50) {
        }
        EXPECT_TRUE(TerminateThread(worker.handle, 0));
        // It may have been given the mutex as it ended; nothing else is out of order.
        if (semctl(set, 0, GETVAL) == 0) {
            EXPECT_TRUE(ReleaseMutex(mutex));
        }
        ASSERT_EQ(semctl(set, 0, GETVAL), 1);
    }
    EXPECT_TRUE(CloseHandle(mutex));
}
