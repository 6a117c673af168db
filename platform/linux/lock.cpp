#include "platform/lock.h"

#include <ctime>
#include <pthread.h>
#include <sys/single_threaded.h>

namespace Korvex {

namespace {

/// How late a thread that waits for a lock may notice that it was terminated.
constexpr long patienceInNanoseconds = 50'000'000;

timespec endOfPatience() {
    constexpr long nanosecondsPerSecond = 1'000'000'000;
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    time.tv_nsec += patienceInNanoseconds;
    if (time.tv_nsec >= nanosecondsPerSecond) {
        time.tv_nsec -= nanosecondsPerSecond;
        ++time.tv_sec;
    }
    return time;
}

} // namespace

void Lock::lockTerminably() {
    // Where there is no other thread, nobody holds it, and the plain way is much the cheaper one.
    if (__libc_single_threaded != 0) {
        mutex.lock();
        return;
    }
    // Waiting for a mutex is no cancellation point, so it is done piece by piece.
    bool isHeld = mutex.try_lock();
    while (!isHeld) {
        pthread_testcancel();
        const timespec time = endOfPatience();
        isHeld = pthread_mutex_timedlock(mutex.native_handle(), &time) == 0;
    }
}

} // namespace Korvex
