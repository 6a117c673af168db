#include <KxQts/handles/thread.h>

#include "handles/disposal.h"
#include "handles/stacksize.h"
#include "platform/lock.h"
#include "platform/scopes.h"
#include "platform/stayloaded.h"

#include <QMetaObject>

#include <new>
#include <pthread.h>

namespace Korvex {

namespace {

void waitForEnd(QThread& thread) {
    const TerminationDeferred scope; // QThread's waiting cannot be unwound
    thread.wait();
}

} // namespace

/// Frees the object of a thread. It is destroyed by the thread itself, together with what else is
/// local to the thread: QThread is done with the thread then, while the thread is not gone yet.
class WThread::End {
public:
    End() = default;
    ~End() {
        const LockGuard guard(sCritSect);
        if (thread)
            thread->noteEnd();
    }

    End(const End&) = delete;
    End& operator=(const End&) = delete;

    WThread* thread = nullptr; // null when the object is gone already
};

const QString WThread::sObjName = QStringLiteral("WThread");
constinit Lock WThread::sCritSect;
HandleRegistry<WThread> WThread::sThreadList;

WThread::WThread(unsigned int stackSize, LPTHREAD_START_ROUTINE routine, void* routineParameter)
    : startRoutine(routine), parameter(routineParameter), requestedStackSize(stackSize) {
    setObjectName(sObjName);
    setStackSize(static_cast<unsigned int>(usableStackSize(stackSize)));
    // Nothing is to be done for termination: QThread enables it in every thread that it starts.
    connect(this, &QThread::started, this, &WThread::watchOwnEnd, Qt::DirectConnection);
    connect(this, &QThread::finished, this, &WThread::noteEndOfWork, Qt::DirectConnection);
}

WThread::~WThread() {
    // Usually out of the registry already; not so an object that a client deletes itself.
    const LockGuard guard(sCritSect);
    sThreadList.remove(this);
    if (End* pending = end)
        pending->thread = nullptr;
}

bool WThread::isCurrent() const {
    return currentThread() == this;
}

// The first that the thread does, and before it can be terminated. Waits for no lock: whoever
// terminates the thread holds the lock of the class.
void WThread::watchOwnEnd() {
    if (!invoked || !isCurrent() || end)
        return;
    static thread_local End ofThisThread;
    ofThisThread.thread = this;
    end = &ofThisThread;
}

// What a thread does at its end must not be cut off.
void WThread::noteEndOfWork() {
    if (!isCurrent())
        return;
    setTerminationEnabled(false);
    workIsOver.store(true, std::memory_order_release);
}

void WThread::run() {
    if (startRoutine)
        startRoutine(parameter);
}

bool WThread::invoke() {
    stayLoaded();
    // A routine that is over at once, and a client that closes the handle at once, find the object
    // registered and started: they wait until this is done.
    const LockGuard guard(sCritSect, Terminably::Yes);
    const TerminationDeferred untilReturned; // what is begun here is not left half done
    try {
        sThreadList.append(this);
    } catch (const std::bad_alloc&) {
        return false;
    }
    hasStarted = true;
    invoked = true;
    HandleAddresses::setUse(this, HandleAddresses::Use::Thread);
    HandleAddresses::forgetClosed(this);
    start(InheritPriority);
    if (isRunning() || isFinished())
        return true;
    sThreadList.remove(this);
    hasStarted = false;
    invoked = false;
    return false;
}

// The functions of QThread are signals that only QThread itself may emit by their names.
void WThread::started() {
    QMetaObject::invokeMethod(this, "started", Qt::DirectConnection);
    const LockGuard guard(sCritSect, Terminably::Yes);
    hasStarted = true;
}

void WThread::finished() {
    QMetaObject::invokeMethod(this, "finished", Qt::DirectConnection);
    const LockGuard guard(sCritSect, Terminably::Yes);
    if (hasFinished)
        return;
    hasFinished = true;
    dispose(this);
}

void WThread::noteEnd() {
    hasEnded = true;
    if (!hasFinished)
        --refCount;
    hasFinished = true;
    freeEnded(sThreadList, this);
}

BOOL WThread::dispose(WThread* handle) {
    const LockGuard guard(sCritSect, Terminably::Yes);
    // However it was told that it has finished: while it runs, the thread needs its object.
    return Korvex::dispose(sThreadList, handle, [](const WThread& thread) KXQTS_UNCHECKED_LOCKING {
        return thread.hasStarted && !thread.hasEnded;
    });
}

BOOL WThread::kill(WThread* handle, unsigned int) {
    bool itself = false;
    {
        const LockGuard guard(sCritSect, Terminably::Yes);
        if (!isLive(sThreadList, handle))
            return FALSE;
        itself = handle->isCurrent();
        if (handle->isRunning())
            handle->terminate();
        if (!itself) {
            // The thread needs the lock of the class to finish, so it is finished here.
            waitForEnd(*handle);
            // QThread has put the two threads in order; race detectors see it from this.
            (void)handle->workIsOver.load(std::memory_order_acquire);
            handle->noteEnd();
        }
    }
    if (itself)
        pthread_testcancel();
    return TRUE;
}

} // namespace Korvex
