#include <KxQts/system/sessioncontrol.h>

#include "platform/sessioncontrol.h"

#include <cstdlib>

using Korvex::SessionRequest;

namespace {

[[noreturn]] void sendAndEnd(unsigned long eventId) {
    (void)sendEventToSystemProcess(eventId);
    std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe): what callers expect of these
}

} // namespace

OSErr sendEventToSystemProcess(unsigned long eventId) {
    switch (eventId) {
    case kAERestart:
        return Korvex::sessionControl().send(SessionRequest::Restart);
    case kAEReallyLogOut:
        return Korvex::sessionControl().send(SessionRequest::LogOut);
    case kAEShutDown:
        return Korvex::sessionControl().send(SessionRequest::ShutDown);
    default:
        return errAEEventNotHandled;
    }
}

void forceRestart() {
    sendAndEnd(kAERestart);
}

void forceLogOut() {
    sendAndEnd(kAEReallyLogOut);
}

void forceShutDown() {
    sendAndEnd(kAEShutDown);
}
