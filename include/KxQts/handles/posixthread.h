/// \file
/// A base class for threads of the system's own, with priorities on a scale of −15 to 15.
#pragma once

#include <KxQts/export.h>

#include <pthread.h>

namespace Korvex {

/// A thread whose work is either a routine or what a derived class does in \ref run.
///
/// An object has one thread at a time. It has no lock: \ref Start, \ref Join and the destructor are
/// left to one thread at a time; \ref Stop may be called by any. The work is not interrupted by
/// \ref Stop, it looks at \ref stopRequested and returns.
class KXQTS_EXPORT Thread {
public:
    Thread();

    /// Asks the work to stop and waits for its end, except when the thread itself calls it. A
    /// derived class joins the thread in its own destructor: here, its part of the object is gone
    /// already.
    virtual ~Thread();

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Sets \ref stopRequested, and nothing else.
    virtual void Stop();

    /// The work of a thread without a \ref routine. Does nothing here.
    virtual void run();

    /// Starts the thread.
    ///
    /// \param newPriority −15 to 15; what lies beyond counts as the highest or the lowest.
    /// \param stackSize Bytes, at least 8192, which is also what 0 stands for. The thread gets this
    /// much or 512 KiB, whichever is more.
    /// \return Whether the system started it. A thread that was started before and was not joined
    /// is left to itself.
    bool Start(int newPriority, unsigned long stackSize);

    /// Waits for the thread's end; then the object may be started again.
    /// \return Its exit value, which is null; null also without waiting when there is no thread and
    /// when the thread itself asks.
    void* Join();

    /// Reads and keeps the priority **of the calling thread**, whichever this object's is.
    /// \return −15 to 15; 0 when this object has no thread, the system does not tell, or has only
    /// one priority (as Linux for its ordinary threads).
    int GetPriority();

    /// Keeps the priority and gives it to the thread. \return Whether there is a thread and the
    /// system allowed it.
    bool SetPriority(int newPriority);

    /// A number that tells the calling thread from the others of its process.
    static unsigned int GetCurrentId();

    /// The system's priority for one of −15 to 15.
    static int pr2native(int newPriority);

    /// What a new thread runs: the routine, or else \ref run.
    /// \param thread The object; with null nothing happens. \return Null.
    static void* threadProc(void* thread);

    static int sPriorityMin; ///< The system's lowest priority for ordinary threads
    static int sPriorityMax; ///< The system's highest priority for ordinary threads

    bool stopRequested = false; ///< Cleared by \ref Start and \ref Join
    pthread_t thread = 0;       ///< 0 when there is none
    /// What \ref Start asks the system for. The stack is the size that was asked for, where the
    /// system knows so small a one, and not what the thread got.
    pthread_attr_t attr{};
    int priority = 0; ///< The last one asked for or read

    /// The work, if it is not \ref run. It polls the flag and returns when that is set.
    void (*routine)(void* context, bool* stopFlag) = nullptr;
    void* context = nullptr; ///< Handed to the routine
};

} // namespace Korvex
