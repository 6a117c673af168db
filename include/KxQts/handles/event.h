/// \file
/// The event object behind the handles of `CreateEventA` and `CreateEventW`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>
#include <KxQts/winapi/types.h>

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <optional>

namespace Korvex {

class AutoResetEvent;
class KXQTS_SCOPED_LOCKABLE LockGuard;
struct HandleClassTable;
class KXQTS_LOCKABLE Lock;

/// An event: signalled or not, resetting itself when a waiter takes the signal.
///
/// The static operations take any pointer and look it up before anything is read through it; the
/// members are for objects that the caller knows to be alive. Any thread may call either.
class KXQTS_EXPORT WEvent : public QObject, public HandleStorage {
public:
    /// Makes an event and puts it into the registry, with a count of one.
    explicit WEvent(bool initialState);
    ~WEvent() override;

    WEvent(const WEvent&) = delete;
    WEvent& operator=(const WEvent&) = delete;

    /// Signals the event. \return True.
    bool set();

    /// Waits for a signal and takes it.
    /// \param ms Milliseconds, or `INFINITE`; another value with the sign bit set fails at once.
    /// \return `WAIT_OBJECT_0`, `WAIT_TIMEOUT`, or `WAIT_FAILED`.
    DWORD wait(DWORD ms);

    /// As the member, for any pointer. \return `FALSE` for what is no live event.
    static BOOL set(WEvent* event);

    /// As the member, for any pointer. The class lock is not held while waiting; an event that is
    /// closed meanwhile gives `WAIT_FAILED`, and so does what is no live event.
    static DWORD wait(WEvent* event, DWORD ms);

    /// Gives up one reference, and the event with the last one. `errno` is left alone.
    /// \return `FALSE` for what is no live event.
    static BOOL dispose(WEvent* event);

    static const QString sObjName; ///< The type tag, "WEvent"
    static Lock sCritSect;         ///< The class lock; its holder may take it again
    static HandleRegistry<WEvent> sObjectList KXQTS_GUARDED_BY(sCritSect); ///< The live events

    std::atomic<int> refCount{1};

    /// What is waited for. Shared with the threads that wait: it outlives the handle until they
    /// have left.
    std::shared_ptr<AutoResetEvent> event;

private:
    friend struct HandleClassTable;

    // Waits for an event whose class lock is held, and leaves the lock before the thread blocks.
    KXQTS_INTERNAL static DWORD waitForLive(WEvent& live, DWORD ms, std::optional<LockGuard>& held);
};

} // namespace Korvex
