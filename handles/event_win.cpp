// Names, security attributes and the manual-reset flag are ignored on purpose: events here are
// private to their process and always reset themselves.

#include <KxQts/errors.h>
#include <KxQts/handles/event.h>
#include <KxQts/winapi/handles.h>

#include "handles/disposal.h"

#include <cerrno>

namespace {

HANDLE createEvent(BOOL initialState) {
    auto* event = Korvex::makeHandle<Korvex::WEvent>(initialState != FALSE);
    errno = event ? Korvex::Error::None : Korvex::Error::NotEnoughMemory;
    return event ? event : INVALID_HANDLE_VALUE;
}

} // namespace

HANDLE CreateEventA(LPSECURITY_ATTRIBUTES, BOOL, BOOL bInitialState, LPCSTR) {
    return createEvent(bInitialState);
}

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL, BOOL bInitialState, LPCWSTR) {
    return createEvent(bInitialState);
}

BOOL SetEvent(HANDLE h) {
    return Korvex::WEvent::set(static_cast<Korvex::WEvent*>(h));
}
