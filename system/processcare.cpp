#include "system/processcare.h"

#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/scopes.h"
#include "system/childcollector.h"

#include <QAbstractEventDispatcher>
#include <QThread>

#include <new>

namespace Korvex {

namespace {

bool isOwnThread(const WProcess& process) {
    return process.thread() == QThread::currentThread();
}

/// Whether a thread's event dispatcher watches the child's descriptors.
bool isWatched(const WProcess& process) {
    QThread* thread = process.thread();
    return thread && QAbstractEventDispatcher::instance(thread);
}

/// Whether the calling thread may work with the object now: it is outside of it itself, and nobody
/// else watches it.
bool isAtHand(const WProcess& process) {
    return !isWatched(process) ||
           (isOwnThread(process) && QThread::currentThread()->loopLevel() == 0);
}

/// Takes a process over in the thread that watches it, as soon as that thread is outside of it: in
/// its event loop, or when it ends.
class LaterTakeOver : public QObject {
public:
    explicit LaterTakeOver(WProcess& toTakeOver) : process(toTakeOver) {
        moveToThread(toTakeOver.thread());
    }

    ~LaterTakeOver() override {
        const LockGuard guard(WProcess::sCritSect);
        ProcessCare::takeOver(process);
    }

    LaterTakeOver(const LaterTakeOver&) = delete;
    LaterTakeOver& operator=(const LaterTakeOver&) = delete;

private:
    WProcess& process;
};

} // namespace

void ProcessCare::noteStart(WProcess& process) {
    const LockGuard guard(WProcess::sCritSect);
    process.hasStarted = true;
    process.childId = process.processId();
}

void ProcessCare::noteEnd(WProcess& process) {
    const LockGuard guard(WProcess::sCritSect);
    if (process.hasFinished)
        return; // told by its client before it was over
    process.hasFinished = true;
    if (--process.refCount < 1)
        WProcess::sObjectList.remove(&process);
}

bool ProcessCare::isKnown(const WProcess* anything) {
    // An address of this use holds a process object until it is given back, under the lock.
    return isLive(WProcess::sObjectList, anything) ||
           (HandleAddresses::useOf(anything) == HandleAddresses::Use::Process &&
            anything->stage == WProcess::Stage::Open);
}

BOOL ProcessCare::close(WProcess* anything) {
    const LockGuard guard(WProcess::sCritSect);
    if (isLive(WProcess::sObjectList, anything) || !isKnown(anything))
        return WProcess::dispose(anything);
    // The end of the process has taken the reference; what is left is the object.
    giveUp(*anything);
    return TRUE;
}

void ProcessCare::giveUp(WProcess& process) {
    process.stage = WProcess::Stage::GivenUp;
    if (!process.hasStarted)
        WProcess::sObjectList.remove(&process);
    if (process.visitors == 0)
        handOver(process);
}

void ProcessCare::handOver(WProcess& process) {
    process.stage = WProcess::Stage::TakenOver;
    process.isDriven = true;
    if (isAtHand(process)) {
        takeOver(process);
        return;
    }
    try {
        (new LaterTakeOver(process))->deleteLater();
    } catch (const std::bad_alloc&) {
        // Its thread cannot be told now. Giving a process up never fails; its child stays a zombie.
    }
}

void ProcessCare::takeOver(WProcess& process) {
    // What is done here is done whole, even if the thread is to be terminated.
    const TerminationDeferred untilDone;
    if (isWatched(process))
        process.moveToThread(nullptr);
    // A child that has ended already is reaped here: no thread is needed then.
    if (hasEnded(process))
        finish(process);
    else
        ChildCollector::instance().take(process);
}

bool ProcessCare::hasEnded(WProcess& process) {
    try {
        return process.state() == QProcess::NotRunning || process.waitForFinished(0);
    } catch (const std::bad_alloc&) {
        return false; // not to be told now
    }
}

void ProcessCare::finish(WProcess& process) {
    const TerminationDeferred untilDone;
    WProcess::sObjectList.remove(&process);
    process.stage = WProcess::Stage::Done;
    if (process.visitors == 0)
        delete &process;
}

} // namespace Korvex
