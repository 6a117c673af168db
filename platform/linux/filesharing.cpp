#include "platform/filesharing.h"

#include "platform/descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

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

} // namespace

int openShared(const char* path, int flags, bool shared) {
    Descriptor opened(open(path, flags | O_CLOEXEC, permissions)); // NOLINT(*-vararg)
    if (!opened.isOpen() || (shared && !lockShared(opened.get())))
        return -1;
    return opened.release();
}

} // namespace Korvex
