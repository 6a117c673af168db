#include "platform/filesharing.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr mode_t permissions = 0666;

/// Takes the lock that an opening for shared use comes with elsewhere.
bool lockShared(int descriptor) {
    int result = 0;
    do {
        result = flock(descriptor, LOCK_SH);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Closes a descriptor also when the thread is terminated while it waits for the lock.
class Descriptor {
public:
    explicit Descriptor(int toHold) : held(toHold) {}
    ~Descriptor() {
        if (held < 0)
            return;
        const int error = errno;
        close(held);
        errno = error;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const { return held; }
    [[nodiscard]] int release() {
        const int released = held;
        held = -1;
        return released;
    }

private:
    int held;
};

} // namespace

int openShared(const char* path, int flags, bool shared) {
    Descriptor opened(open(path, flags | O_CLOEXEC, permissions)); // NOLINT(*-vararg)
    if (opened.get() < 0 || (shared && !lockShared(opened.get())))
        return -1;
    return opened.release();
}

} // namespace Korvex
