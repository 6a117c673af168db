#pragma once

#include "platform/lock.h"

#include <KxQts/system/process.h>

namespace Korvex {

/// How process objects are looked after: what happens when a process ends, when its handle is
/// closed, and to a process whose handle was closed before it ended.
///
/// A process object is worked with by one thread at a time. Where a thread's event dispatcher
/// watches the child's descriptors, that is this thread.
class ProcessCare {
public:
    static void noteStart(WProcess& process);

    /// Drops the reference that the running process had. The object is never deleted here: this is
    /// called from within it.
    static void noteEnd(WProcess& process);

    /// Whether a pointer is a process that is known to run or whose client has not closed it yet.
    static bool isKnown(const WProcess* anything) KXQTS_REQUIRES(WProcess::sCritSect);

    /// Closes a handle.
    static BOOL close(WProcess* anything);

    /// The client's last reference is gone: frees the object, now or when the process has ended and
    /// nobody waits for it any more.
    static void giveUp(WProcess& process) KXQTS_REQUIRES(WProcess::sCritSect);

    /// Frees a process that was given up, or has it freed when it has ended. For the thread whose
    /// dispatcher watches it, if there is one.
    static void takeOver(WProcess& process) KXQTS_REQUIRES(WProcess::sCritSect);

    /// Whether a process has ended, as far as that can be told now; it is reaped then.
    static bool hasEnded(WProcess& process);

    /// Frees a process that was taken over and has ended.
    static void finish(WProcess& process) KXQTS_REQUIRES(WProcess::sCritSect);

    /// A thread's stay with a process that it waits for. The object is there as long as the visit.
    class Visit {
    public:
        explicit Visit(WProcess* anything);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        /// \param ms As for `WProcess::wait`. \return Whether the process ended.
        bool waitForEnd(int ms);

    private:
        WProcess* process = nullptr; ///< Null for what is no process that is known to run
        bool isDriver = false;
        qint64 childId = 0;
    };

private:
    static void handOver(WProcess& process) KXQTS_REQUIRES(WProcess::sCritSect);
};

} // namespace Korvex
