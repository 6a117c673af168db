#include "system/childcollector.h"

#include "platform/lock.h"
#include "platform/scopes.h"
#include "platform/stayloaded.h"
#include "system/processcare.h"

#include <algorithm>
#include <system_error>
#include <thread>

namespace Korvex {

namespace {

// How often a process is looked after that might wait for a reader: often while it writes much.
constexpr auto shortestPause = std::chrono::milliseconds(1);
constexpr auto longestPause = std::chrono::milliseconds(1000);

/// \return Whether there was any.
bool throwOutputAway(WProcess& process) {
    const QByteArray output = process.readAllStandardOutput();
    const QByteArray errors = process.readAllStandardError();
    return !output.isEmpty() || !errors.isEmpty();
}

} // namespace

ChildCollector& ChildCollector::instance() {
    // Never destroyed: its thread may outlive the program's destructors.
    static auto* const collector = new ChildCollector;
    return *collector;
}

void ChildCollector::take(WProcess& process) {
    const std::lock_guard guard(lock);
    arrivals.push_back(&process);
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
    }
}

void ChildCollector::run() {
    ChildEnds ends;
    std::vector<Charge> charges;
    while (admitArrivals(charges, ends)) {
        const auto next =
            std::min_element(charges.begin(), charges.end(), [](const Charge& a, const Charge& b) {
                return a.nextLook < b.nextLook;
            });
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
}

bool ChildCollector::admitArrivals(std::vector<Charge>& charges, ChildEnds& ends) {
    const std::lock_guard guard(lock);
    for (WProcess* process : arrivals) {
        charges.push_back({process, process->processId(), shortestPause, Clock::now()});
        ends.watch(charges.back().childId);
    }
    arrivals.clear();
    isRunning = !charges.empty();
    sleeper = isRunning ? &ends : nullptr;
    return isRunning;
}

bool ChildCollector::hasEnded(Charge& charge) {
    WProcess& process = *charge.process;
    if (process.state() == QProcess::NotRunning || process.waitForFinished(0)) {
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
