#include "system/childcollector.h"

#include "platform/lock.h"
#include "platform/scopes.h"
#include "platform/stayloaded.h"
#include "system/processcare.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <thread>

namespace Korvex {

namespace {

// How often a process is looked after that might wait for a reader: often while it writes much.
constexpr auto shortestPause = std::chrono::milliseconds(1);
constexpr auto longestPause = std::chrono::milliseconds(1000);

/// \return Whether there was any.
bool throwOutputAway(WProcess& process) {
    try {
        const QByteArray output = process.readAllStandardOutput();
        const QByteArray errors = process.readAllStandardError();
        return !output.isEmpty() || !errors.isEmpty();
    } catch (const std::bad_alloc&) {
        return false; // it is there the next time, too
    }
}

} // namespace

ChildCollector& ChildCollector::instance() {
    // Never destroyed: its thread may outlive the program's destructors.
    static auto* const collector = new ChildCollector;
    return *collector;
}

void ChildCollector::take(WProcess& process) {
    const std::lock_guard guard(lock);
    arrivals.push_back(&process); // there is room
    if (!isRunning)
        startThread();
    else if (sleeper)
        sleeper->wake();
}

void ChildCollector::startThread() {
    stayLoaded();
    const AllSignalsBlocked blocked;
    try {
        std::thread(&ChildCollector::run, this).detach();
        isRunning = true;
    } catch (const std::system_error&) {
        // No thread to be had now. The next process that is closed tries again.
    } catch (const std::bad_alloc&) {
        // The same.
    }
}

void ChildCollector::makeRoomFor(std::size_t processes) {
    const std::lock_guard guard(lock);
    if (processes > arrivals.capacity())
        arrivals.reserve(2 * processes);
}

void ChildCollector::run() {
    ChildEnds ends;
    std::vector<Charge> charges;
    bool isDone = false;
    while (!isDone) {
        try {
            isDone = !admitArrivals(charges, ends);
            if (!isDone)
                collect(charges, ends);
        } catch (const std::bad_alloc&) {
            std::this_thread::sleep_for(longestPause); // nothing is lost but time
        }
    }
}

void ChildCollector::collect(std::vector<Charge>& charges, ChildEnds& ends) {
    const auto next =
        std::min_element(charges.begin(), charges.end(),
                         [](const Charge& a, const Charge& b) { return a.nextLook < b.nextLook; });
    const auto pause = std::chrono::ceil<std::chrono::milliseconds>(
        std::max(next->nextLook - Clock::now(), Clock::duration::zero()));
    const std::vector<long long> ended = ends.sleep(pause);
    const auto now = Clock::now();
    std::erase_if(charges, [&](Charge& charge) {
        const bool isDue = charge.nextLook <= now ||
                           std::find(ended.begin(), ended.end(), charge.childId) != ended.end();
        return isDue && hasEnded(charge);
    });
}

bool ChildCollector::admitArrivals(std::vector<Charge>& charges, ChildEnds& ends) {
    const std::lock_guard guard(lock);
    while (!arrivals.empty()) {
        WProcess* process = arrivals.back();
        charges.push_back({process, process->processId(), shortestPause, Clock::now()});
        arrivals.pop_back();
        ends.watch(charges.back().childId);
    }
    isRunning = !charges.empty();
    sleeper = isRunning ? &ends : nullptr;
    return isRunning;
}

bool ChildCollector::hasEnded(Charge& charge) {
    WProcess& process = *charge.process;
    if (ProcessCare::hasEnded(process)) {
        const LockGuard guard(WProcess::sCritSect);
        ProcessCare::finish(process);
        return true;
    }
    charge.pause =
        throwOutputAway(process) ? shortestPause : std::min(charge.pause * 2, longestPause);
    charge.nextLook = Clock::now() + charge.pause;
    return false;
}

} // namespace Korvex
