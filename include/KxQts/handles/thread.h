/// \file
/// The thread object behind the handles of `CreateThread`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>
#include <KxQts/winapi/threads.h>

#include <QString>
#include <QThread>

#include <atomic>

namespace Korvex {

class KXQTS_LOCKABLE Lock;

/// A thread that runs a routine.
///
/// An object made with `new` and started with \ref invoke belongs to its handle: it is freed when
/// the thread has ended, and nobody deletes it. The static operations take any pointer and look it
/// up before anything is read through it; the members are for objects that the caller knows to be
/// alive, so for a started one only until it may have ended.
class KXQTS_EXPORT WThread : public QThread, public HandleStorage {
public:
    /// Makes a thread that does not run yet and is in no registry.
    /// \param stackSize Bytes. The thread gets this much or 512 KiB, whichever is more.
    WThread(unsigned int stackSize, LPTHREAD_START_ROUTINE routine, void* parameter);
    ~WThread() override;

    WThread(const WThread&) = delete;
    WThread& operator=(const WThread&) = delete;

    /// Calls the routine, if there is one. Called by the thread itself.
    void run() override;

    /// Starts the thread and puts it into the registry, with a count of one.
    /// \return Whether the thread was started; a routine that is over already makes no difference.
    bool invoke();

    /// Emits QThread's signal and notes that the thread has started. The thread's own start does
    /// the same.
    void started();

    /// Emits QThread's signal, notes that the thread has ended and gives up one reference. The
    /// thread's own end does the same.
    void finished();

    /// Bytes of stack that were asked for. The thread may have more.
    [[nodiscard]] unsigned int stackSize() const { return requestedStackSize; }

    /// Gives up one reference, and the thread object with the last one unless the thread runs: then
    /// it is freed at its end. \return `FALSE` for what is no live thread.
    static BOOL dispose(WThread* thread);

    /// Ends a thread, see \ref TerminateThread. The class lock is held meanwhile.
    /// \param exitCode Ignored. \return `FALSE` for what is no live thread.
    static BOOL kill(WThread* thread, unsigned int exitCode);

    static const QString sObjName; ///< The type tag, "WThread"
    static Lock sCritSect;         ///< The class lock; its holder may take it again
    static HandleRegistry<WThread> sThreadList KXQTS_GUARDED_BY(sCritSect); ///< The live threads

    std::atomic<int> refCount{1};
    bool hasStarted KXQTS_GUARDED_BY(sCritSect) = false;  ///< "started" of the handle model
    bool hasFinished KXQTS_GUARDED_BY(sCritSect) = false; ///< "finished" of the handle model
    const LPTHREAD_START_ROUTINE startRoutine;
    void* const parameter;

private:
    class End;

    KXQTS_INTERNAL bool isCurrent() const;
    KXQTS_INTERNAL void watchOwnEnd();
    KXQTS_INTERNAL void noteEndOfWork();
    KXQTS_INTERNAL void noteEnd() KXQTS_REQUIRES(sCritSect);

    const unsigned int requestedStackSize;
    std::atomic<bool> invoked{false};
    std::atomic<bool> workIsOver{false};
    bool hasEnded KXQTS_GUARDED_BY(sCritSect) = false; // whoever was told meanwhile
    std::atomic<End*> end{nullptr};                    // lives in the storage of the running thread
};

} // namespace Korvex
