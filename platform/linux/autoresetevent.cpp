#include "platform/autoresetevent.h"

#include <cerrno>
#include <ctime>

namespace Korvex {

namespace {

timespec monotonicTimeIn(std::chrono::milliseconds wait) {
    constexpr long nanosecondsPerSecond = 1'000'000'000;
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
    time.tv_sec += static_cast<time_t>(seconds.count());
    time.tv_nsec += static_cast<long>(std::chrono::nanoseconds(wait - seconds).count());
    if (time.tv_nsec >= nanosecondsPerSecond) {
        time.tv_nsec -= nanosecondsPerSecond;
        ++time.tv_sec;
    }
    return time;
}

} // namespace

/// A thread's place among the waiters, from its arrival until it was given a signal or gives up.
class AutoResetEvent::Waiting {
public:
    explicit Waiting(AutoResetEvent& waitedFor) : event(waitedFor) {}

    // Runs also when the thread is terminated in its wait: what it was given meanwhile goes to
    // another.
    ~Waiting() {
        if (!done && giveUp() == Result::Signalled)
            event.set();
    }

    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    Result wait(const timespec* deadline) {
        int failed = 0;
        // Whoever closes the event after this thread was counted also wakes it.
        if (event.closed.load()) {
            done = true;
            (void)giveUp();
            return Result::Closed;
        }
        do {
            failed = deadline ? sem_clockwait(&event.wakeUps, CLOCK_MONOTONIC, deadline)
                              : sem_wait(&event.wakeUps);
        } while (failed != 0 && errno == EINTR);
        const Result result = failed ? giveUp() : signalled();
        done = true;
        return result;
    }

private:
    [[nodiscard]] Result signalled() const {
        // Pairs with the signalling thread's change of the state: what it wrote before is seen
        // here.
        (void)event.state.load(std::memory_order_acquire);
        return event.closed.load(std::memory_order_relaxed) ? Result::Closed : Result::Signalled;
    }

    // Leaves the waiters. When a signal was given to this thread in the meantime, it is there or
    // about to come, and must be taken: nobody else is counted as waiting for it.
    [[nodiscard]] Result giveUp() {
        int seen = event.state.load(std::memory_order_relaxed);
        while (seen < 0) {
            if (event.state.compare_exchange_weak(seen, seen + 1, std::memory_order_relaxed))
                return Result::TimedOut;
        }
        while (sem_wait(&event.wakeUps) != 0) {
        }
        return signalled();
    }

    AutoResetEvent& event;
    bool done = false;
};

AutoResetEvent::AutoResetEvent(bool signalled) : state(signalled ? 1 : 0) {
    sem_init(&wakeUps, 0, 0);
}

AutoResetEvent::~AutoResetEvent() {
    sem_destroy(&wakeUps);
}

void AutoResetEvent::set() {
    int seen = state.load(std::memory_order_relaxed);
    // A signalled event is written again all the same, so that the next waiter sees what this
    // thread did before.
    while (!state.compare_exchange_weak(seen, seen < 1 ? seen + 1 : 1, std::memory_order_acq_rel,
                                        std::memory_order_relaxed)) {
    }
    if (seen < 0)
        sem_post(&wakeUps);
}

bool AutoResetEvent::tryWait() {
    int seen = 1;
    return state.load(std::memory_order_relaxed) == 1 &&
           state.compare_exchange_strong(seen, 0, std::memory_order_acquire,
                                         std::memory_order_relaxed) &&
           !closed.load(std::memory_order_relaxed);
}

AutoResetEvent::Result AutoResetEvent::wait() {
    return waitUntil(nullptr);
}

AutoResetEvent::Result AutoResetEvent::wait(std::chrono::milliseconds limit) {
    if (tryWait())
        return Result::Signalled;
    if (limit <= limit.zero())
        return closed.load() ? Result::Closed : Result::TimedOut;
    const timespec deadline = monotonicTimeIn(limit);
    return waitUntil(&deadline);
}

AutoResetEvent::Result AutoResetEvent::waitUntil(const timespec* deadline) {
    const bool taken = state.fetch_sub(1) == 1;
    if (taken && !closed.load(std::memory_order_relaxed))
        return Result::Signalled;
    if (taken)
        return Result::Closed;
    return Waiting(*this).wait(deadline);
}

void AutoResetEvent::close() {
    closed.store(true);
    for (int waiters = -state.exchange(0); waiters > 0; --waiters)
        sem_post(&wakeUps);
}

} // namespace Korvex
