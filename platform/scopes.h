#pragma once

#include <cerrno>
#include <csignal>
#include <pthread.h>

namespace Korvex {

/// Keeps the thread from being terminated while it lives: in a destructor, which no thread may be
/// unwound from, and around what is better finished than undone.
class TerminationDeferred {
public:
    TerminationDeferred() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before); }
    ~TerminationDeferred() { pthread_setcancelstate(before, nullptr); }

    TerminationDeferred(const TerminationDeferred&) = delete;
    TerminationDeferred& operator=(const TerminationDeferred&) = delete;

private:
    int before = PTHREAD_CANCEL_ENABLE;
};

/// Leaves `errno` at its end as it was at its beginning.
class ErrorNumberKept {
public:
    ErrorNumberKept() = default;
    ~ErrorNumberKept() { errno = before; }

    ErrorNumberKept(const ErrorNumberKept&) = delete;
    ErrorNumberKept& operator=(const ErrorNumberKept&) = delete;

private:
    const int before = errno;
};

/// Blocks all signals in the calling thread, and so in the threads that it starts, while it lives.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

private:
    sigset_t previous{};
};

} // namespace Korvex
