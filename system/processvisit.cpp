#include "system/processcare.h"

#include "handles/disposal.h"
#include "platform/childends.h"
#include "platform/scopes.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <sys/wait.h>

namespace Korvex {

namespace {

/// Whether the calling thread may work with a process object that nobody drives.
bool mayDrive(const WProcess& process) {
    QThread* thread = process.thread();
    return !thread || thread == QThread::currentThread() ||
           !QAbstractEventDispatcher::instance(thread);
}

/// Whether a child has ended, without reaping it.
bool hasEnded(qint64 childId) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(childId), &info, WEXITED | WNOHANG | WNOWAIT) == 0
               ? info.si_pid != 0
               : errno == ECHILD;
}

/// Waits for the end of a child without touching its process object, which another thread drives.
bool waitFromOutside(qint64 childId, int ms) {
    constexpr qint64 longestSleep = 1000; // its end may go unnoticed
    if (childId == 0)
        return false;
    ChildEnds ends;
    ends.watch(childId);
    const QDeadlineTimer deadline(ms);
    do {
        const qint64 left = deadline.isForever() ? longestSleep : deadline.remainingTime();
        if (!ends.sleep(std::chrono::milliseconds(std::min(left, longestSleep))).empty() ||
            hasEnded(childId))
            return true;
    } while (!deadline.hasExpired());
    return false;
}

} // namespace

ProcessCare::Visit::Visit(WProcess* anything) {
    const LockGuard guard(WProcess::sCritSect);
    if (!isLive(WProcess::sObjectList, anything))
        return;
    process = anything;
    ++process->visitors;
    childId = process->childId;
    isDriver = !process->isDriven && mayDrive(*process);
    if (isDriver)
        process->isDriven = true;
}

ProcessCare::Visit::~Visit() {
    if (!process)
        return;
    const TerminationDeferred untilLeft;
    const LockGuard guard(WProcess::sCritSect);
    if (isDriver)
        process->isDriven = false;
    if (--process->visitors > 0)
        return;
    if (process->stage == WProcess::Stage::GivenUp)
        handOver(*process);
    else if (process->stage == WProcess::Stage::Done)
        delete process;
}

bool ProcessCare::Visit::waitForEnd(int ms) {
    if (!process)
        return false;
    return isDriver ? process->waitForFinished(ms) : waitFromOutside(childId, ms);
}

} // namespace Korvex
