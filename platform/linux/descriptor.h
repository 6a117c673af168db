#pragma once

#include <cerrno>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace Korvex {

/// Keeps the thread from being terminated while it lives: in a destructor, which no thread may be
/// unwound from, around what would end a thread that somebody wants to end.
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

/// A file descriptor that is closed with its holder, also when a thread is terminated in between.
/// Closing leaves `errno` alone.
class Descriptor {
public:
    explicit Descriptor(int toHold = -1) : held(toHold) {}
    Descriptor(Descriptor&& other) noexcept : held(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(held, other.held);
        return *this;
    }
    ~Descriptor() {
        if (held < 0)
            return;
        const TerminationDeferred untilClosed;
        const ErrorNumberKept untilThen;
        close(held);
    }

    [[nodiscard]] bool isOpen() const { return held >= 0; }
    [[nodiscard]] int get() const { return held; }
    [[nodiscard]] int release() { return std::exchange(held, -1); }

private:
    int held;
};

} // namespace Korvex
