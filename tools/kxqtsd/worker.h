#pragma once

#include "loop.h"
#include "platform/descriptor.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Kxqtsd {

/// Does work that may have to wait for a file or a lock, one job after the other, on a thread of
/// its own, so that the loop goes on meanwhile.
class Worker {
public:
    /// Does the work, and gives what is to be called in the loop afterwards.
    using Job = std::function<std::function<void()>()>;

    explicit Worker(Loop& loop);
    /// Waits for the job in hand; the others are dropped.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void post(Job job);

private:
    void work();
    void callFinished();

    Loop& loop;
    Korvex::Descriptor wakeUps;
    std::mutex lock;
    std::condition_variable changed;
    std::deque<Job> jobs;                       ///< Guarded by the lock
    std::deque<std::function<void()>> finished; ///< Guarded by the lock
    bool isStopped = false;                     ///< Guarded by the lock
    std::thread thread;
};

} // namespace Kxqtsd
