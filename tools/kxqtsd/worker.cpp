#include "worker.h"

#include <cstdint>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace Kxqtsd {

Worker::Worker(Loop& usedLoop)
    : loop(usedLoop), wakeUps(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread(&Worker::work, this) {
    loop.watch(wakeUps.get(), EPOLLIN, [this] { callFinished(); });
}

Worker::~Worker() {
    {
        const std::lock_guard guard(lock);
        isStopped = true;
    }
    changed.notify_one();
    thread.join();
    loop.forget(wakeUps.get());
}

void Worker::post(Job job) {
    {
        const std::lock_guard guard(lock);
        jobs.push_back(std::move(job));
    }
    changed.notify_one();
}

void Worker::work() {
    std::unique_lock guard(lock);
    for (;;) {
        changed.wait(guard, [this] { return isStopped || !jobs.empty(); });
        if (isStopped)
            return;
        const Job job = std::move(jobs.front());
        jobs.pop_front();
        guard.unlock();
        auto afterwards = job();
        guard.lock();
        finished.push_back(std::move(afterwards));
        const std::uint64_t one = 1;
        (void)!write(wakeUps.get(), &one, sizeof one);
    }
}

void Worker::callFinished() {
    std::uint64_t count = 0;
    (void)!read(wakeUps.get(), &count, sizeof count);
    std::deque<std::function<void()>> toCall;
    {
        const std::lock_guard guard(lock);
        toCall.swap(finished);
    }
    for (const auto& call : toCall)
        call();
}

} // namespace Kxqtsd
