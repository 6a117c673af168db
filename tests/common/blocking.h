#pragma once

#include <sys/types.h>

#include <atomic>
#include <functional>
#include <thread>

namespace KxTest {

/// A thread that is about to block, and can be watched doing so. It is joined by the destructor.
class BlockingThread {
public:
    explicit BlockingThread(std::function<void()> work);
    ~BlockingThread();

    BlockingThread(const BlockingThread&) = delete;
    BlockingThread& operator=(const BlockingThread&) = delete;

    /// Returns when the thread sleeps in the system, or is over.
    void waitUntilBlocked() const;

    /// Lets the system terminate it where it blocks, and waits for its end.
    void terminate();

    void join();
    [[nodiscard]] bool isOver() const { return over; }

private:
    std::atomic<pid_t> task{0};
    std::atomic<bool> over{false};
    std::thread thread;
};

/// Returns when a thread of this process sleeps in the system, or is gone.
void waitUntilAsleep(pid_t task);

} // namespace KxTest
