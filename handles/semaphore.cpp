#include <KxQts/handles/semaphore.h>

#include "handles/semaphoreset.h"

#include <KxQts/errors.h>

#include <cerrno>
#include <climits>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace Korvex {

namespace {

constexpr int unusable = 0;
constexpr int made = 1;
constexpr int opened = 2;
constexpr int openFlags = IPC_CREAT | 0666;

/// What the system says of a call, in numbers that are the same everywhere.
int errorOf(int result) {
    if (result != -1)
        return Error::None;
    return errno == EAGAIN ? Error::TryAgain : errno;
}

} // namespace

Semaphore::Semaphore(int key) {
    Create(key);
}

Semaphore::Semaphore(const char* path, int projId) {
    const bool isPrivate = !path || *path == '\0';
    const key_t key = isPrivate ? IPC_PRIVATE : ftok(path, projId);
    if (key != -1)
        Create(key);
    else
        lastError = errno;
}

int Semaphore::Create(int key) {
    state = made;
    lastError = 0;
    semId = SemaphoreSet::make(key);
    if (semId > 0)
        return state;
    state = unusable;
    lastError = errno;
    if (lastError != Error::Exists)
        return state;
    semId = semget(key, 1, openFlags);
    lastError = errorOf(semId);
    if (lastError == 0)
        state = opened;
    return state;
}

bool Semaphore::Wait() {
    if (state == unusable)
        return false;
    lastError = errorOf(SemaphoreSet::change(semId, -1, SEM_UNDO));
    return lastError == 0;
}

bool Semaphore::TryWait() {
    if (state == unusable)
        return false;
    lastError = errorOf(SemaphoreSet::change(semId, -1, SEM_UNDO | IPC_NOWAIT));
    return lastError == 0;
}

bool Semaphore::Release(unsigned short count, bool undo) {
    if (state == unusable)
        return false;
    // To the system, a change by nothing would be a wait for zero and a larger count a negative
    // one.
    if (count == 0 || count > SHRT_MAX)
        lastError = count == 0 ? Error::None : Error::OutOfRange;
    else
        lastError =
            errorOf(SemaphoreSet::change(semId, static_cast<short>(count), undo ? SEM_UNDO : 0));
    return lastError == 0;
}

bool Semaphore::Remove() {
    if (state == unusable)
        return false;
    lastError = errorOf(SemaphoreSet::remove(semId));
    return lastError == 0;
}

} // namespace Korvex
