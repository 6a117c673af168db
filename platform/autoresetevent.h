#pragma once

#include <atomic>
#include <chrono>
#include <ctime>
#include <semaphore.h>

namespace Korvex {

/// Something that one thread waits for and another makes happen.
///
/// A signal is taken by exactly one waiter, the next one if nobody waits; signals do not add up.
/// All operations may be called by any thread. The system is asked only when a thread really waits,
/// and an event holds no descriptor.
class AutoResetEvent {
public:
    enum class Result {
        Signalled, ///< A signal was there or came, and is taken
        TimedOut,  ///< None came in time
        Closed,    ///< The event was closed before or while the thread waited
    };

    explicit AutoResetEvent(bool signalled);
    ~AutoResetEvent();

    AutoResetEvent(const AutoResetEvent&) = delete;
    AutoResetEvent& operator=(const AutoResetEvent&) = delete;

    /// Signals the event. Has no effect on a signalled one.
    void set();

    /// Takes the signal if there is one now.
    [[nodiscard]] bool tryWait();

    /// Waits without limit. A cancellation point: a thread that is terminated here takes no signal.
    Result wait();

    /// Waits for at most \a limit, measured on the monotonic clock. A cancellation point as well.
    Result wait(std::chrono::milliseconds limit);

    /// Ends all waiting, now and later.
    void close();

private:
    class Waiting;
    Result waitUntil(const timespec* deadline);

    // 1 when signalled, 0 when not, −n while n threads wait that no signal was given to yet.
    std::atomic<int> state;
    std::atomic<bool> closed{false};
    // Holds one count for each waiting thread that was given a signal but has not gone on yet.
    sem_t wakeUps;
};

} // namespace Korvex
