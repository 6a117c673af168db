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

bool isPending() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

BrokenPipeGuard::BrokenPipeGuard() : wasPending(isPending()) {
    const sigset_t set = onlyBrokenPipe();
    pthread_sigmask(SIG_BLOCK, &set, &previous);
}

BrokenPipeGuard::~BrokenPipeGuard() {
    const TerminationDeferred untilConsumed;
    const ErrorNumberKept untilThen;
    if (!wasPending && isPending()) {
        const sigset_t set = onlyBrokenPipe();
        const timespec atOnce{};
        sigtimedwait(&set, nullptr, &atOnce);
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

} // namespace Korvex
