#include "daemon/sessionlock.h"

#include "platform/clock.h"

#include <chrono>

namespace Korvex {

namespace {

constexpr auto step = std::chrono::milliseconds(100);
constexpr int steps = 300;

bool tryTake(SessionSlot& slot, const SessionLock* session) {
    const SessionLock* free = nullptr;
    return slot.compare_exchange_strong(free, session, std::memory_order_acquire,
                                        std::memory_order_relaxed);
}

bool take(SessionSlot& slot, const SessionLock* session) {
    for (int i = 0; i < steps; ++i) {
        if (tryTake(slot, session))
            return true;
        systemClock().sleep(step);
    }
    return tryTake(slot, session);
}

} // namespace

SessionLock::SessionLock(SessionSlot& toTake) : slot(toTake), taken(take(toTake, this)) {}

SessionLock::~SessionLock() {
    if (taken)
        slot.store(nullptr, std::memory_order_release);
}

} // namespace Korvex
