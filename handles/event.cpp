#include <KxQts/handles/event.h>

#include "handles/classes.h"
#include "handles/disposal.h"
#include "platform/autoresetevent.h"
#include "platform/scopes.h"

#include <KxQts/winapi/handles.h>

#include <chrono>

namespace Korvex {

namespace {

constexpr DWORD signBit = 0x80000000u;

bool isWaitTime(DWORD ms) {
    return ms == INFINITE || (ms & signBit) == 0;
}

DWORD waitFor(AutoResetEvent& event, DWORD ms) {
    const ErrorNumberKept kept;
    const AutoResetEvent::Result result =
        ms == INFINITE ? event.wait() : event.wait(std::chrono::milliseconds(ms));
    switch (result) {
    case AutoResetEvent::Result::Signalled:
        return WAIT_OBJECT_0;
    case AutoResetEvent::Result::TimedOut:
        return WAIT_TIMEOUT;
    case AutoResetEvent::Result::Closed:
        break;
    }
    return WAIT_FAILED;
}

} // namespace

const QString WEvent::sObjName = QStringLiteral("WEvent");
constinit Lock WEvent::sCritSect;
HandleRegistry<WEvent> WEvent::sObjectList;

WEvent::WEvent(bool initialState) : event(std::make_shared<AutoResetEvent>(initialState)) {
    setObjectName(sObjName);
    const LockGuard guard(sCritSect);
    sObjectList.append(this);
    HandleAddresses::setUse(this, HandleAddresses::Use::Event);
}

WEvent::~WEvent() {
    // Usually out of the registry already; not so an object that a client deletes itself.
    const LockGuard guard(sCritSect);
    sObjectList.remove(this);
    event->close();
}

bool WEvent::set() {
    event->set();
    return true;
}

DWORD WEvent::wait(DWORD ms) {
    if (!isWaitTime(ms))
        return WAIT_FAILED;
    const std::shared_ptr<AutoResetEvent> waitedFor = event;
    return waitFor(*waitedFor, ms);
}

BOOL WEvent::set(WEvent* handle) {
    const LockGuard guard(sCritSect);
    return isLive(sObjectList, handle) && handle->set() ? TRUE : FALSE;
}

DWORD WEvent::wait(WEvent* handle, DWORD ms) KXQTS_UNCHECKED_LOCKING {
    HeldLock held(std::in_place, sCritSect);
    return isLive(sObjectList, handle) ? waitForLive(*handle, ms, held) : WAIT_FAILED;
}

DWORD WEvent::waitForLive(WEvent& live, DWORD ms, std::optional<LockGuard>& held) {
    if (!isWaitTime(ms))
        return WAIT_FAILED;
    if (live.event->tryWait())
        return WAIT_OBJECT_0;
    const std::shared_ptr<AutoResetEvent> waitedFor = live.event;
    held.reset();
    return waitFor(*waitedFor, ms);
}

BOOL WEvent::dispose(WEvent* handle) {
    const LockGuard guard(sCritSect);
    return Korvex::dispose(sObjectList, handle);
}

} // namespace Korvex
