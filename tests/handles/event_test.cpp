#include <KxQts/handles/event.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

using Korvex::WEvent;

namespace {

HANDLE makeEvent(BOOL signalled) {
    return CreateEventA(nullptr, FALSE, signalled, nullptr);
}

} // namespace

TEST(Event, StartsAsAskedForAndResetsItselfWhateverTheManualFlagSays) {
    HANDLE event = CreateEventA(nullptr, TRUE, TRUE, "x");
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, CreationLeavesZeroInErrno) {
    errno = 99;
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, L"name");
    EXPECT_EQ(errno, 0);
    EXPECT_NE(event, nullptr);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, NamesAreIgnored) {
    HANDLE one = CreateEventA(nullptr, FALSE, FALSE, "same");
    HANDLE other = CreateEventA(nullptr, FALSE, FALSE, "same");
    EXPECT_NE(one, other);
    EXPECT_TRUE(SetEvent(one));
    EXPECT_EQ(WaitForSingleObject(other, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(one));
    EXPECT_TRUE(CloseHandle(other));
}

TEST(Event, TwoSignalsBeforeAWaitReleaseOneWait) {
    HANDLE event = makeEvent(FALSE);
    EXPECT_TRUE(SetEvent(event));
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, WaitTimesWithTheSignBitAreRefusedWithoutWaiting) {
    HANDLE event = makeEvent(TRUE);
    for (DWORD ms : {0x80000000u, 0x80000001u, 0xFFFFFFFEu})
        EXPECT_EQ(WaitForSingleObject(event, ms), WAIT_FAILED) << ms;
    EXPECT_EQ(WaitForSingleObject(event, 0x7FFFFFFFu), WAIT_OBJECT_0)
        << "the signal is still there";
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, OneSignalWakesOneOfManyWaiters) {
    constexpr int waiters = 8;
    HANDLE event = makeEvent(FALSE);
    HANDLE woken = makeEvent(FALSE);
    std::atomic<int> count{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < waiters; ++i)
        threads.emplace_back([&] {
            EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
            ++count;
            SetEvent(woken);
        });
    for (int i = 1; i <= waiters; ++i) {
        EXPECT_TRUE(SetEvent(event));
        EXPECT_EQ(WaitForSingleObject(woken, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(count, i);
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_TRUE(CloseHandle(woken));
}

TEST(Event, ATimedOutWaitTakesAtLeastItsTime) {
    HANDLE event = makeEvent(FALSE);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(event, 20), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, WaitsLeaveErrnoAlone) {
    HANDLE event = makeEvent(TRUE);
    errno = 77;
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(event, 1), WAIT_TIMEOUT);
    EXPECT_EQ(errno, 77);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Event, ClosingEndsTheWaitOfAnotherThread) {
    auto* event = static_cast<WEvent*>(makeEvent(FALSE));
    std::thread waiter([&] { EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_FAILED); });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_TRUE(CloseHandle(event));
    waiter.join();
}

TEST(Event, AClosedHandleIsRefusedByEveryCall) {
    HANDLE event = makeEvent(TRUE);
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_FALSE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_FAILED);
    errno = 0;
    EXPECT_FALSE(CloseHandle(event));
    EXPECT_EQ(errno, 22);
    errno = 77;
    EXPECT_FALSE(WEvent::dispose(static_cast<WEvent*>(event)));
    EXPECT_EQ(errno, 77);
}
