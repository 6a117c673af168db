#include "handles/mutexsemaphore.h"

#include "handles/semaphoreset.h"
#include "platform/clock.h"

#include <KxQts/errors.h>
#include <KxQts/winapi/handles.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace Korvex {

namespace {

constexpr mode_t permissions = 0666;
constexpr std::chrono::milliseconds pauseBetweenTries{1};

/// Waits without limit, whatever signals arrive meanwhile.
bool waitFor(sem_t* semaphore) {
    int result = 0;
    do {
        result = sem_wait(semaphore);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool waitForSet(int set) {
    int result = 0;
    do {
        result = SemaphoreSet::change(set, -1, SEM_UNDO);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

MutexSemaphore::MutexSemaphore(std::uintptr_t handle, bool isSet)
    : posix(isSet ? nullptr : reinterpret_cast<sem_t*>(handle)),
      set(isSet ? static_cast<int>(handle) : -1) {}

MutexSemaphore::~MutexSemaphore() {
    remove();
    if (posix)
        sem_close(posix);
}

bool MutexSemaphore::openPrivate(bool initialOwner) {
    const int made = SemaphoreSet::make(IPC_PRIVATE);
    // 0 is no identifier to callers who keep it in a number; make() gives none.
    if (made < 0 || (made == 0 && initialOwner))
        return false;
    if (!SemaphoreSet::setValue(made, 1)) {
        const int error = errno;
        SemaphoreSet::remove(made);
        errno = error;
        return false;
    }
    if (made == 0)
        return false;
    set = made;
    return true;
}

bool MutexSemaphore::openNamed(const char* name, bool initialOwner) {
    const int before = errno;
    // Whoever does not ask to own it joins what there is. Looking for that first is much cheaper
    // than an attempt to make it and ends the same.
    if (!initialOwner && join(name, 0))
        return true;
    posix = sem_open(name, O_CREAT | O_EXCL, permissions, initialOwner ? 0 : 1);
    if (posix != SEM_FAILED) {
        errno = before;
        return true;
    }
    posix = nullptr;
    if (errno != Error::Exists || initialOwner)
        return false;
    // Another process was faster. If it has removed the name again already, this makes it.
    return join(name, O_CREAT);
}

bool MutexSemaphore::join(const char* name, int flags) {
    sem_t* joined = sem_open(name, flags, permissions, 1);
    if (joined == SEM_FAILED)
        return false;
    posix = joined;
    errno = Error::Exists;
    return true;
}

bool MutexSemaphore::tryTake() {
    // A set's identifier is no address: it is never handed to this call.
    return posix && sem_trywait(posix) == 0;
}

bool MutexSemaphore::tryOften(DWORD ms) {
    for (std::uint64_t tries = std::uint64_t(ms) + 1; tries > 0; --tries) {
        if (tryTake())
            return true;
        systemClock().sleep(pauseBetweenTries);
    }
    return false;
}

bool MutexSemaphore::take(DWORD ms) {
    if (ms == INFINITE)
        return posix ? waitFor(posix) : waitForSet(set);
    return posix && ms == 0 ? tryTake() : tryOften(ms);
}

bool MutexSemaphore::give() {
    return (posix ? sem_post(posix) : SemaphoreSet::change(set, +1, SEM_UNDO)) == 0;
}

void MutexSemaphore::remove() {
    // Once: the system gives the identifier out again some day.
    if (set >= 0 && !removed.exchange(true))
        SemaphoreSet::remove(set);
}

std::uintptr_t MutexSemaphore::handle() const {
    return posix ? reinterpret_cast<std::uintptr_t>(posix)
                 : static_cast<std::uintptr_t>(static_cast<unsigned int>(set));
}

} // namespace Korvex
