#include "platform/linux/arbiterthread.h"

#include "platform/scopes.h"
#include "platform/stayloaded.h"

#include <new>
#include <system_error>
#include <thread>

namespace Korvex {

namespace {

thread_local bool isArbiters = false;

/// \return Whether a thread could be started.
bool start(const ArbiterThread::Job& work) {
    stayLoaded(); // the thread may outlive the module otherwise
    const AllSignalsBlocked blocked;
    try {
        std::thread([work] {
            isArbiters = true;
            work();
        }).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

ArbiterThread& ArbiterThread::instance() {
    static auto* const only = new ArbiterThread; // its thread may outlive the program's destructors
    return *only;
}

void ArbiterThread::run(Job job) {
    if (isArbiters) {
        if (!start(job))
            job();
        return;
    }
    std::unique_lock guard(mutex);
    jobs.push_back(std::move(job));
    if (isRunning)
        return;
    const bool started = start([this] { work(); });
    isRunning = started;
    guard.unlock();
    if (!started)
        work();
}

void ArbiterThread::work() {
    Job job;
    while (next(job)) {
        job();
        job = nullptr;
    }
}

bool ArbiterThread::next(Job& job) {
    const std::lock_guard guard(mutex);
    isRunning = !jobs.empty();
    if (!isRunning)
        return false;
    job = std::move(jobs.front());
    jobs.pop_front();
    return true;
}

} // namespace Korvex
