#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace Korvex {

/// The thread that mounts, unmounts and calls back: one, which exists only while there is something
/// to do. It blocks all signals.
class ArbiterThread {
public:
    using Job = std::function<void()>;

    static ArbiterThread& instance();

    /// Has a job run, after those that were handed in before. A job that is handed in by another
    /// one gets a thread of its own, so that jobs may wait for each other. Where there is no thread
    /// to be had, the job is run at once.
    void run(Job job);

private:
    void work();
    [[nodiscard]] bool next(Job& job);

    std::mutex mutex; // guards what follows
    std::deque<Job> jobs;
    bool isRunning = false;
};

} // namespace Korvex
