#pragma once

#include "platform/scopes.h"

#include <unistd.h>
#include <utility>

namespace Korvex {

/// A file descriptor that is closed with its holder, also when a thread is terminated in between.
/// Closing leaves `errno` alone.
class Descriptor {
public:
    explicit Descriptor(int toHold = -1) : held(toHold) {}
    ~Descriptor() { reset(); }

    Descriptor(Descriptor&& other) noexcept : held(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(held, other.held);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool isOpen() const { return held >= 0; }
    [[nodiscard]] int get() const { return held; }
    [[nodiscard]] int release() { return std::exchange(held, -1); }

    void reset(int toHold = -1) {
        const TerminationDeferred untilClosed;
        const ErrorNumberKept untilThen;
        if (const int old = std::exchange(held, toHold); old >= 0)
            close(old);
    }

private:
    int held;
};

} // namespace Korvex
