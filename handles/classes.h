#pragma once

#include "handles/addresses.h"
#include "platform/lock.h"

#include <KxQts/winapi/types.h>

#include <QString>

#include <optional>

namespace Korvex {

/// A lock that may be held.
using HeldLock = std::optional<LockGuard>;

/// What a handle class means to the calls that take every kind of handle.
struct HandleClass {
    const QString& tag;

    HandleAddresses::Use use; ///< How addresses of its objects are marked
    Lock* lock;               ///< Guards its registry; null where there is none
    bool (*isLive)(HANDLE);   ///< Asks its registry, under the lock; null where there is none

    /// Gives up a reference. Null where handles of this tag are not closed.
    BOOL (*close)(HANDLE);

    /// Waits. Null where handles of this tag are not waited for. When the lock of the class is held
    /// the handle is known to be live; the lock is left before the thread blocks.
    DWORD (*wait)(HANDLE, DWORD ms, HeldLock& held);
};

/// A handle whose class is told by the tag of the object behind it.
///
/// An object of the library is looked up before its tag is read, and the lock of its class stays
/// held as long as this object lives: other threads may close the handle at the same time.
class TaggedHandle {
public:
    explicit TaggedHandle(HANDLE toTell);

    /// Null for everything that is no handle of a known class.
    [[nodiscard]] const HandleClass* handleClass() const { return found; }

    /// The lock of the class, if it is held.
    HeldLock& lock() { return held; }

private:
    HeldLock held;
    const HandleClass* found = nullptr;
};

} // namespace Korvex
