// Handles when there is no memory for another one.

#include "common/noplaceleft.h"

#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/mutexes.h>
#include <KxQts/winapi/threads.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <semaphore.h>
#include <thread>

using KxTest::NoPlaceLeft;

namespace {

DWORD neverRun(LPVOID) {
    ADD_FAILURE() << "there is no thread";
    return 0;
}

} // namespace

TEST(HandleExhaustion, AnEventThatCannotBeMadeIsAllOnes) {
    const NoPlaceLeft exhausted;
    errno = 0;
    EXPECT_EQ(CreateEventA(nullptr, FALSE, FALSE, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(errno, 8);
}

TEST(HandleExhaustion, AThreadThatCannotBeMadeIsNull) {
    const NoPlaceLeft exhausted;
    errno = 0;
    EXPECT_EQ(CreateThread(nullptr, 0, neverRun, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(errno, 12);
}

// The checks behind each test see a set that stays behind.
TEST(HandleExhaustion, AMutexThatCannotBeMadeIsNullAndLeavesNoSet) {
    const NoPlaceLeft exhausted;
    errno = 0;
    EXPECT_EQ(CreateMutexA(nullptr, FALSE, nullptr), nullptr);
    EXPECT_EQ(errno, 12);
}

TEST(HandleExhaustion, ANamedMutexThatCannotBeMadeIsNullAndKeepsNoLock) {
    const char* name = "/kxqts-exhaustion";
    {
        const NoPlaceLeft exhausted;
        errno = 0;
        EXPECT_EQ(CreateMutexA(nullptr, FALSE, name), nullptr);
        EXPECT_EQ(errno, 12);
    }
    // By another thread, which the lock of the class would keep waiting.
    std::thread([&] {
        HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
        EXPECT_NE(mutex, nullptr);
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0) << "it is free";
        EXPECT_TRUE(CloseHandle(mutex));
    }).join();
    sem_unlink(name);
}
