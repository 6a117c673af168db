#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace Korvex {

/// Owns a descriptor: closes it, leaving `errno` alone, also when the thread is terminated.
class Descriptor {
public:
    explicit Descriptor(int toOwn = -1) : owned(toOwn) {}
    ~Descriptor() { reset(); }

    Descriptor(Descriptor&& other) noexcept : owned(other.release()) {}
    Descriptor& operator=(Descriptor&& other) {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool isOpen() const { return owned >= 0; }
    [[nodiscard]] int get() const { return owned; }
    [[nodiscard]] int release() { return std::exchange(owned, -1); }

    void reset(int toOwn = -1) {
        const int old = std::exchange(owned, toOwn);
        if (old < 0)
            return;
        const int error = errno;
        close(old);
        errno = error;
    }

private:
    int owned;
};

} // namespace Korvex
