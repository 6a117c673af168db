#include "handles/semaphoreset.h"

#include <cerrno>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace Korvex::SemaphoreSet {

namespace {

constexpr int permissions = 0666;

// Programs define the last argument of semctl themselves.
union Argument {
    int value;
    void* buffer;
};

/// `semop` is no cancellation point, so a thread that blocks in it could not be terminated. While
/// asynchronous cancellation is on, the unwinding may start at any instruction: nothing here may
/// need a clean-up, not even one that a sanitizer adds.
__attribute__((noinline, no_sanitize("address", "thread", "undefined"))) int
changeTerminably(int set, sembuf* operation) {
    int typeBefore = 0;
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, &typeBefore);
    const int result = semop(set, operation, 1);
    pthread_setcanceltype(typeBefore, nullptr);
    return result;
}

} // namespace

int make(key_t key) {
    constexpr int flags = IPC_CREAT | IPC_EXCL | permissions;
    const int first = semget(key, 1, flags);
    if (first != 0)
        return first;
    // A key has one set at a time; without a key the number is kept busy until the other is there.
    if (key != IPC_PRIVATE)
        remove(first);
    const int second = semget(key, 1, flags);
    const int error = errno;
    if (key == IPC_PRIVATE)
        remove(first);
    errno = error;
    return second;
}

int change(int set, short by, short flags) {
    sembuf operation{0, by, flags};
    const bool mayBlock = by < 0 && (flags & IPC_NOWAIT) == 0;
    return mayBlock ? changeTerminably(set, &operation) : semop(set, &operation, 1);
}

bool setValue(int set, int value) {
    Argument argument{};
    argument.value = value;
    return semctl(set, 0, SETVAL, argument) == 0; // NOLINT(*-vararg)
}

int remove(int set) {
    return semctl(set, 0, IPC_RMID); // NOLINT(*-vararg)
}

} // namespace Korvex::SemaphoreSet
