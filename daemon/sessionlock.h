#pragma once

#include <atomic>

namespace Korvex {

class SessionLock;

/// The session in progress, of a kind of which a process has one at a time.
using SessionSlot = std::atomic<const SessionLock*>;

/// A place in a session slot, held while it lives. Whoever finds the slot taken looks again every
/// 100 ms, 300 times.
class SessionLock {
public:
    explicit SessionLock(SessionSlot& toTake);
    ~SessionLock();

    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

    [[nodiscard]] bool isTaken() const { return taken; }

private:
    SessionSlot& slot;
    bool taken;
};

} // namespace Korvex
