#include "platform/brokenpipe.h"

#include "platform/scopes.h"

#include <ctime>

namespace Korvex {

namespace {

sigset_t onlyBrokenPipe() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

/// Takes the signal if it waits for this thread.
void consume() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    if (sigismember(&pending, SIGPIPE) != 1)
        return;
    const sigset_t set = onlyBrokenPipe();
    const timespec atOnce{};
    sigtimedwait(&set, nullptr, &atOnce);
}

} // namespace

BrokenPipeGuard::BrokenPipeGuard() {
    const sigset_t set = onlyBrokenPipe();
    pthread_sigmask(SIG_BLOCK, &set, &previous);
}

BrokenPipeGuard::~BrokenPipeGuard() {
    // Where the program itself blocks the signal, one that waits may be its own.
    if (sigismember(&previous, SIGPIPE) == 1)
        return;
    const TerminationDeferred untilConsumed;
    const ErrorNumberKept untilThen;
    consume();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

} // namespace Korvex
