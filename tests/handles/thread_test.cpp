#include "common/blocking.h"
#include "common/scratchfile.h"
#include "common/unprivileged.h"
#include "platform/lock.h"

#include <KxQts/handles/thread.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/threads.h>

#include <gtest/gtest.h>

#include <QDateTime>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <pthread.h>
#include <semaphore>
#include <string>
#include <sys/resource.h>
#include <vector>

using Korvex::WThread;

namespace {

using Work = std::function<void()>;

DWORD runWork(LPVOID work) {
    (*static_cast<Work*>(work))();
    return 0;
}

HANDLE start(Work& work, SIZE_T stackSize = 0) {
    return CreateThread(nullptr, stackSize, runWork, &work, 0, nullptr);
}

WThread* objectBehind(HANDLE handle) {
    return static_cast<WThread*>(handle);
}

std::size_t liveThreads() {
    const Korvex::LockGuard guard(WThread::sCritSect);
    return WThread::sThreadList.size();
}

bool isRegistered(HANDLE thread) {
    const Korvex::LockGuard guard(WThread::sCritSect);
    return WThread::sThreadList.contains(objectBehind(thread));
}

/// Ended threads leave the registry a moment behind the end of their routines.
void waitUntilLive(std::size_t count) {
    while (liveThreads() != count)
        std::this_thread::yield();
}

/// Declared behind what threads use: nothing of that goes before their ends.
struct UntilAllEnded {
    ~UntilAllEnded() { waitUntilLive(0); }
};

/// A handle whose thread has ended already.
HANDLE endedThread() {
    static Work nothing = [] {};
    HANDLE thread = start(nothing);
    while (isRegistered(thread))
        std::this_thread::yield();
    return thread;
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

TEST(Thread, RunsItsRoutineWithTheParameter) {
    std::binary_semaphore done{0};
    int seen = 0;
    Work work = [&] {
        seen = 42;
        done.release();
    };
    const UntilAllEnded end;
    errno = 99;
    DWORD identifier = 7;
    constexpr DWORD createSuspended = 4;
    HANDLE thread = CreateThread(nullptr, 0, runWork, &work, createSuspended, &identifier);
    EXPECT_EQ(errno, 0);
    ASSERT_NE(thread, nullptr);
    done.acquire();
    EXPECT_EQ(seen, 42) << "it runs at once whatever the flags say";
    EXPECT_EQ(identifier, 7u) << "nothing is written there";
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, WithoutARoutineThereIsNone) {
    errno = 0;
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(errno, 22);
}

TEST(Thread, AsksForTheStackOfTheContractAndGetsOneThatSuffices) {
    for (SIZE_T asked : {SIZE_T(0), SIZE_T(1), SIZE_T(16384), SIZE_T(100'000), SIZE_T(3'000'000)}) {
        std::binary_semaphore measured{0};
        std::binary_semaphore mayEnd{0};
        std::size_t size = 0;
        Work work = [&] {
            size = stackSizeOfThisThread();
            measured.release();
            mayEnd.acquire();
        };
        const UntilAllEnded end;
        HANDLE thread = start(work, asked);
        measured.acquire();
        EXPECT_EQ(objectBehind(thread)->stackSize(), std::max<SIZE_T>(asked, 16384));
        EXPECT_GE(size, std::max<SIZE_T>(asked, 512 * 1024));
        mayEnd.release();
        EXPECT_TRUE(CloseHandle(thread));
    }
}

TEST(Thread, OrdinaryCodeRunsOnTheSmallestStack) {
    const KxTest::ScratchFile file;
    std::binary_semaphore done{0};
    std::string text;
    Work work = [&] {
        std::array<char, 512> buffer{};
        std::snprintf(buffer.data(), buffer.size(), "%.300Lf %s", 1.0L / 3, "text");
        std::printf("%s\n", buffer.data());
        text = QStringLiteral("%1 and %2")
                   .arg(QDateTime::currentDateTime().toString(), "more")
                   .toStdString();
        HANDLE handle =
            CreateFileA(file.name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
        EXPECT_TRUE(WriteFile(handle, buffer.data(), 100, nullptr, nullptr));
        EXPECT_TRUE(CloseHandle(handle));
        done.release();
    };
    const UntilAllEnded end;
    HANDLE thread = start(work, 8192);
    done.acquire();
    EXPECT_TRUE(text.ends_with("and more"));
    EXPECT_EQ(KxTest::contentsOf(file.name).size(), 100u);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, IsAThreadObjectWhileItRuns) {
    std::binary_semaphore mayEnd{0};
    const UntilAllEnded end;
    HANDLE thread = CreateThread(
        nullptr, 0,
        [](LPVOID semaphore) -> DWORD {
            static_cast<std::binary_semaphore*>(semaphore)->acquire();
            return 0;
        },
        &mayEnd, 0, nullptr);
    WThread& object = *objectBehind(thread);
    EXPECT_EQ(object.objectName(), "WThread");
    EXPECT_TRUE(object.isRunning());
    EXPECT_EQ(object.refCount, 1);
    EXPECT_EQ(object.parameter, &mayEnd);
    {
        const Korvex::LockGuard guard(WThread::sCritSect);
        EXPECT_TRUE(object.hasStarted);
        EXPECT_FALSE(object.hasFinished);
        EXPECT_EQ(WThread::sThreadList.at(0), &object);
    }
    mayEnd.release();
    waitUntilLive(0);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, CannotBeWaitedFor) {
    std::binary_semaphore mayEnd{0};
    Work work = [&] { mayEnd.acquire(); };
    const UntilAllEnded end;
    HANDLE running = start(work);
    EXPECT_EQ(WaitForSingleObject(running, INFINITE), WAIT_FAILED);
    mayEnd.release();
    EXPECT_TRUE(CloseHandle(running));
    HANDLE ended = endedThread();
    EXPECT_EQ(WaitForSingleObject(ended, INFINITE), WAIT_FAILED);
    EXPECT_TRUE(CloseHandle(ended));
}

TEST(Thread, OneThatHasEndedCanBeClosedOnceAndNothingElse) {
    HANDLE thread = endedThread();
    auto* object = objectBehind(thread);
    EXPECT_FALSE(TerminateThread(thread, 0));
    EXPECT_FALSE(WThread::dispose(object));
    errno = 77;
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_EQ(errno, 77);
    EXPECT_FALSE(CloseHandle(thread));
    EXPECT_EQ(errno, 22);
}

TEST(Thread, TheAddressOfAnEndedOneIsNotGivenOutBeforeItIsClosed) {
    HANDLE ended = endedThread();
    std::vector<HANDLE> events;
    while (events.size() < 5000) {
        events.push_back(CreateEventA(nullptr, FALSE, FALSE, nullptr));
        ASSERT_NE(events.back(), ended);
    }
    for (HANDLE event : events)
        EXPECT_TRUE(CloseHandle(event));
    EXPECT_TRUE(CloseHandle(ended));
}

TEST(Thread, GoesOnWhenItsHandleIsClosedAndIsFreedAtItsEnd) {
    std::binary_semaphore mayEnd{0};
    std::binary_semaphore freed{0};
    std::atomic<bool> wentOn{false};
    Work work = [&] {
        mayEnd.acquire();
        wentOn = true;
    };
    const UntilAllEnded end;
    HANDLE thread = start(work);
    QObject::connect(
        objectBehind(thread), &QObject::destroyed, objectBehind(thread), [&] { freed.release(); },
        Qt::DirectConnection);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_EQ(liveThreads(), 1u);
    EXPECT_FALSE(wentOn);
    mayEnd.release();
    freed.acquire();
    EXPECT_TRUE(wentOn);
    waitUntilLive(0);
    EXPECT_FALSE(CloseHandle(thread));
}

TEST(Thread, ClosingTwiceWhileItRunsIsReported) {
    std::binary_semaphore mayEnd{0};
    Work work = [&] { mayEnd.acquire(); };
    const UntilAllEnded end;
    HANDLE thread = start(work);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_FALSE(CloseHandle(thread));
    EXPECT_EQ(liveThreads(), 1u) << "a running thread is never freed";
    mayEnd.release();
    waitUntilLive(0);
}

TEST(Thread, ClosingRightBehindTheStartIsAlwaysRight) {
    std::counting_semaphore done{0};
    Work work = [&] { done.release(); };
    const UntilAllEnded end;
    for (int i = 0; i < 2000; ++i) {
        HANDLE thread = start(work);
        ASSERT_NE(thread, nullptr);
        ASSERT_TRUE(CloseHandle(thread));
        ASSERT_FALSE(CloseHandle(thread));
        done.acquire();
    }
}

TEST(Thread, ManyThatEndedBeforeTheyWereClosed) {
    std::vector<HANDLE> threads;
    std::counting_semaphore done{0};
    Work work = [&] { done.release(); };
    const UntilAllEnded end;
    while (threads.size() < 2000) {
        threads.push_back(start(work));
        done.acquire();
    }
    waitUntilLive(0);
    for (HANDLE thread : threads)
        EXPECT_TRUE(CloseHandle(thread));
    for (HANDLE thread : threads)
        EXPECT_FALSE(CloseHandle(thread));
}

TEST(Thread, AnExtraReferenceKeepsTheObject) {
    std::binary_semaphore mayEnd{0};
    Work work = [&] { mayEnd.acquire(); };
    const UntilAllEnded end;
    HANDLE thread = start(work);
    ++objectBehind(thread)->refCount;
    mayEnd.release();
    EXPECT_TRUE(objectBehind(thread)->wait());
    while (objectBehind(thread)->refCount != 1)
        std::this_thread::yield();
    EXPECT_EQ(liveThreads(), 1u);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_EQ(liveThreads(), 0u);
    EXPECT_FALSE(CloseHandle(thread));
}

TEST(Thread, ItsNumberIsTheLowerHalfOfTheSystems) {
    const DWORD here = GetCurrentThreadId();
    EXPECT_EQ(here, static_cast<DWORD>(pthread_self()));
    std::thread([&] { EXPECT_NE(GetCurrentThreadId(), here); }).join();
}

TEST(Thread, WhatIsNoRunningThreadIsNotTerminated) {
    EXPECT_FALSE(TerminateThread(nullptr, 0));
    EXPECT_FALSE(TerminateThread(INVALID_HANDLE_VALUE, 0));
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    EXPECT_FALSE(TerminateThread(event, 0));
    EXPECT_TRUE(CloseHandle(event));
    WThread unstarted(0, nullptr, nullptr);
    EXPECT_FALSE(WThread::kill(&unstarted, 0));
    EXPECT_FALSE(WThread::dispose(&unstarted));
}

TEST(Thread, NoneIsMadeWhereTheSystemStartsNone) {
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        const rlimit none{0, 0};
        ASSERT_EQ(setrlimit(RLIMIT_NPROC, &none), 0);
        Work work = [] {};
        errno = 0;
        EXPECT_EQ(start(work), nullptr);
        EXPECT_EQ(errno, 35);
        EXPECT_EQ(liveThreads(), 0u);
    }));
}

namespace {

class DerivedThread : public WThread {
public:
    explicit DerivedThread(std::binary_semaphore& toPost)
        : WThread(0, nullptr, nullptr), done(toPost) {}
    ~DerivedThread() override { done.release(); }
    void run() override { ran = QThread::currentThread() == this; }

    static std::atomic<bool> ran;

private:
    std::binary_semaphore& done;
};

std::atomic<bool> DerivedThread::ran{false};

class LargeThread : public DerivedThread {
public:
    using DerivedThread::DerivedThread;

private:
    [[maybe_unused]] std::array<char, 1000> more{};
};

} // namespace

TEST(Thread, OneOfAClientsOwnClassIsAHandleToo) {
    std::binary_semaphore gone{0};
    auto* thread = new DerivedThread(gone);
    const UntilAllEnded end;
    EXPECT_TRUE(thread->invoke());
    gone.acquire();
    EXPECT_TRUE(DerivedThread::ran);
    waitUntilLive(0);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, AnEndedOneOfALargeClassIsRefused) {
    std::binary_semaphore gone{0};
    HANDLE thread = new LargeThread(gone);
    const UntilAllEnded end;
    EXPECT_TRUE(objectBehind(thread)->invoke());
    gone.acquire();
    waitUntilLive(0);
    EXPECT_FALSE(CloseHandle(thread));
}

TEST(Thread, ALargeOneThatIsClosedGoesOnAndIsFreed) {
    std::binary_semaphore gone{0};
    const UntilAllEnded end;
    HANDLE thread = new LargeThread(gone);
    {
        // Holds the end up until the handle is closed.
        const Korvex::LockGuard guard(WThread::sCritSect);
        EXPECT_TRUE(objectBehind(thread)->invoke());
        EXPECT_TRUE(CloseHandle(thread));
    }
    gone.acquire();
    waitUntilLive(0);
}

TEST(Thread, TheSignalsOfItsStartAndEndAreEmittedOnceWithoutAnEventLoop) {
    std::atomic<int> starts{0};
    std::atomic<int> ends{0};
    Work work = [] {};
    const UntilAllEnded end;
    auto* thread = new WThread(0, runWork, &work);
    QObject::connect(
        thread, &QThread::started, thread, [&] { ++starts; }, Qt::DirectConnection);
    QObject::connect(
        thread, &QThread::finished, thread, [&] { ++ends; }, Qt::DirectConnection);
    EXPECT_TRUE(thread->invoke());
    waitUntilLive(0);
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, ItsNotificationsEmitTheSignalsAndAreNoted) {
    std::binary_semaphore running{0};
    std::binary_semaphore mayEnd{0};
    Work work = [&] {
        running.release();
        mayEnd.acquire();
    };
    const UntilAllEnded end;
    auto* thread = objectBehind(start(work));
    std::atomic<int> starts{0};
    std::atomic<int> ends{0};
    running.acquire();
    QObject::connect(
        thread, &QThread::started, thread, [&] { ++starts; }, Qt::DirectConnection);
    QMetaObject::Connection toEnd = QObject::connect(
        thread, &QThread::finished, thread, [&] { ++ends; }, Qt::DirectConnection);
    thread->started();
    thread->finished();
    QObject::disconnect(toEnd);
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(ends, 1);
    {
        const Korvex::LockGuard guard(WThread::sCritSect);
        EXPECT_TRUE(thread->hasFinished);
        EXPECT_EQ(thread->refCount, 0) << "one reference was given up";
        EXPECT_TRUE(WThread::sThreadList.contains(thread)) << "but the thread runs";
    }
    mayEnd.release();
    waitUntilLive(0);
    EXPECT_TRUE(CloseHandle(thread));
}
