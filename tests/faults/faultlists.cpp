#include "faults/sweep.h"

#include <cerrno>

namespace KxTest {

std::vector<Fault> fileFaults() {
    return {
        {"open: EMFILE", KX_FAULT_OPEN, EMFILE},
        {"open: EINTR", KX_FAULT_OPEN, EINTR},
        {"fopen: EMFILE", KX_FAULT_STREAM, EMFILE},
        {"opendir: ENOMEM", KX_FAULT_LISTING, ENOMEM},
        {"read: EIO", KX_FAULT_READ, EIO},
        {"read: EINTR", KX_FAULT_READ, EINTR},
        {"read: short", KX_FAULT_READ, 0},
        {"write: ENOSPC", KX_FAULT_WRITE, ENOSPC},
        {"write: EINTR", KX_FAULT_WRITE, EINTR},
        {"write: short", KX_FAULT_WRITE, 0},
        {"lseek: EIO", KX_FAULT_SEEK, EIO},
        {"close: EIO", KX_FAULT_CLOSE, EIO},
        {"rename: ENOSPC", KX_FAULT_RENAME, ENOSPC},
        {"link: EPERM", KX_FAULT_LINK, EPERM},
        {"unlink: EROFS", KX_FAULT_UNLINK, EROFS},
        {"mkdir: ENOSPC", KX_FAULT_MKDIR, ENOSPC},
        {"rmdir: EBUSY", KX_FAULT_RMDIR, EBUSY},
        {"fsync: EIO", KX_FAULT_SYNC, EIO},
        {"stat: EACCES", KX_FAULT_STAT, EACCES},
        {"chmod: EPERM", KX_FAULT_CHMOD, EPERM},
        {"futimens: EPERM", KX_FAULT_TIMES, EPERM},
        {"flock: ENOLCK", KX_FAULT_LOCK, ENOLCK},
        {"flock: EINTR", KX_FAULT_LOCK, EINTR},
        {"dup: EMFILE", KX_FAULT_DUP, EMFILE},
        {"getrandom: ENOSYS", KX_FAULT_RANDOM, ENOSYS},
    };
}

std::vector<Fault> processFaults() {
    return {
        {"fork: EAGAIN", KX_FAULT_FORK, EAGAIN},
        {"wait: EINTR", KX_FAULT_WAIT, EINTR},
        {"pthread_create: EAGAIN", KX_FAULT_THREAD, EAGAIN},
        {"pipe: EMFILE", KX_FAULT_PIPE, EMFILE},
        {"poll: EINTR", KX_FAULT_POLL, EINTR},
        {"poll: ENOMEM", KX_FAULT_POLL, ENOMEM},
        {"dlopen: ENOMEM", KX_FAULT_LOAD, ENOMEM},
    };
}

std::vector<Fault> networkFaults() {
    return {
        {"socket: EMFILE", KX_FAULT_SOCKET, EMFILE},
        {"connect: ECONNREFUSED", KX_FAULT_CONNECT, ECONNREFUSED},
        {"send: ECONNRESET", KX_FAULT_SEND, ECONNRESET},
        {"send: short", KX_FAULT_SEND, 0},
        {"recv: ECONNRESET", KX_FAULT_RECV, ECONNRESET},
        {"recv: EINTR", KX_FAULT_RECV, EINTR},
        {"recv: short", KX_FAULT_RECV, 0},
        {"setsockopt: ENOBUFS", KX_FAULT_SOCKETOPTION, ENOBUFS},
    };
}

std::vector<Fault> semaphoreFaults() {
    return {{"semaphore: ENOSPC", KX_FAULT_SEMAPHORE, ENOSPC},
            {"semaphore: EINTR", KX_FAULT_SEMAPHORE, EINTR}};
}

std::vector<Fault> memoryFaults() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return {};
#else
    return {{"malloc: ENOMEM", KX_FAULT_MEMORY, ENOMEM}};
#endif
}

std::vector<Fault> operator+(std::vector<Fault> some, const std::vector<Fault>& others) {
    some.insert(some.end(), others.begin(), others.end());
    return some;
}

} // namespace KxTest
