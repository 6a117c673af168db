#include "faults/sweep.h"
#include "platform/lock.h"

#include <KxQts/errors.h>
#include <KxQts/handles/posixthread.h>
#include <KxQts/handles/semaphore.h>
#include <KxQts/handles/thread.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/mutexes.h>
#include <KxQts/winapi/threads.h>

#include <gtest/gtest.h>

#include <semaphore.h>
#include <thread>

using namespace KxTest;
namespace Error = Korvex::Error;

namespace {

std::vector<Fault> allFaults() {
    return semaphoreFaults() + processFaults() + fileFaults() + memoryFaults();
}

DWORD signalEvent(LPVOID event) {
    SetEvent(event);
    return 0;
}

/// Closes a handle and leaves the error number of what was tried before.
bool closed(HANDLE handle) {
    const int error = errno;
    const bool isClosed = CloseHandle(handle) != FALSE;
    errno = error;
    return isClosed;
}

} // namespace

TEST(HandleFaults, Event) {
    sweep(memoryFaults() + fileFaults(),
          {.name = "event",
           .run =
               [] {
                   const HANDLE event = CreateEventA(nullptr, FALSE, TRUE, nullptr);
                   if (event == INVALID_HANDLE_VALUE)
                       return false;
                   const DWORD waited = WaitForSingleObject(event, 10'000);
                   return closed(event) && waited == WAIT_OBJECT_0;
               },
           .reports = {Error::NotEnoughMemory}});
}

TEST(HandleFaults, PrivateMutex) {
    sweep(allFaults(), {.name = "private mutex",
                        .run =
                            [] {
                                const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
                                if (!mutex)
                                    return false;
                                const bool isTaken =
                                    WaitForSingleObject(mutex, INFINITE) == WAIT_OBJECT_0;
                                const bool isGiven = isTaken && ReleaseMutex(mutex);
                                return closed(mutex) && isGiven;
                            },
                        .reports = {Reported::injected}});
}

TEST(HandleFaults, NamedMutex) {
    sweep(allFaults(), {.name = "named mutex",
                        .prepare = [] { sem_unlink("/faults"); },
                        .run =
                            [] {
                                const HANDLE mutex = CreateMutexA(nullptr, TRUE, "/faults");
                                return mutex && closed(mutex);
                            },
                        .verify = [](bool) { sem_unlink("/faults"); },
                        .reports = {Reported::injected}});
}

TEST(HandleFaults, Thread) {
    const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    sweep(processFaults() + fileFaults() + memoryFaults(),
          {.name = "thread",
           .run =
               [=] {
                   const HANDLE thread = CreateThread(nullptr, 0, signalEvent, event, 0, nullptr);
                   if (!thread)
                       return false;
                   const bool hasRun = WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0;
                   return closed(thread) && hasRun;
               },
           // Qt does not look whether it was given the memory for the connection of a signal, and
           // takes a thread object apart that it has not put together.
           .forget =
               [] { // what belongs to a thread that is about to end
                   const auto isRunning = [] {
                       const Korvex::LockGuard guard(Korvex::WThread::sCritSect);
                       return !Korvex::WThread::sThreadList.isEmpty();
                   };
                   while (isRunning())
                       std::this_thread::yield();
               },
           .cannotBeTold = {"connectImpl", "QThreadC"},
           .reports = {Error::TryAgain, Error::NoMemory}});
    EXPECT_TRUE(CloseHandle(event));
}

TEST(HandleFaults, ThreadOfAClass) {
    class Empty : public Korvex::Thread {};
    sweep(processFaults() + memoryFaults(), {.name = "thread class", .run = [] {
                                                 Empty thread;
                                                 const bool isStarted = thread.Start(0, 0);
                                                 thread.Join();
                                                 return isStarted;
                                             }});
}

TEST(HandleFaults, SemaphoreOfAClass) {
    sweep(semaphoreFaults() + memoryFaults(),
          {.name = "semaphore class", .run = [] {
               Korvex::Semaphore semaphore(nullptr, 0);
               const bool isDone = semaphore.Release(1, false) && semaphore.TryWait();
               // What could not be removed is removed here.
               return (semaphore.Remove() || !semaphore.Remove()) && isDone;
           }});
}
