#pragma once

#include "platform/lock.h"

#include <KxQts/handles/mutex.h>
#include <KxQts/winapi/mutexes.h>

#include <fcntl.h>
#include <semaphore.h>
#include <string>
#include <sys/sem.h>
#include <utility>

namespace KxTest {

/// A name for mutexes, taken out of the system when the test ends.
class MutexName {
public:
    explicit MutexName(std::string toUse = "/kxqts-mutex") : text(std::move(toUse)) {}
    ~MutexName() { sem_unlink(text.c_str()); }
    MutexName(const MutexName&) = delete;
    MutexName& operator=(const MutexName&) = delete;

    operator const char*() const { return text.c_str(); }

    [[nodiscard]] bool existsInSystem() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        if (semaphore == SEM_FAILED)
            return false;
        sem_close(semaphore);
        return true;
    }
    void make(unsigned count) const {
        sem_close(sem_open(text.c_str(), O_CREAT | O_EXCL, 0600, count));
    }
    [[nodiscard]] int count() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        int value = -1;
        sem_getvalue(semaphore, &value);
        sem_close(semaphore);
        return value;
    }
    void post() const {
        sem_t* semaphore = sem_open(text.c_str(), 0);
        sem_post(semaphore);
        sem_close(semaphore);
    }

private:
    std::string text;
};

inline Korvex::WMutex* objectBehind(HANDLE handle) {
    return static_cast<Korvex::WMutex*>(handle);
}

inline int setOf(HANDLE unnamed) {
    return static_cast<int>(objectBehind(unnamed)->semHandle);
}

inline int valueOf(HANDLE unnamed) {
    return semctl(setOf(unnamed), 0, GETVAL);
}

inline HANDLE makeUnnamed() {
    return CreateMutexA(nullptr, FALSE, nullptr);
}

/// Leaves the class lock that a reused name has left held.
inline void leaveKeptLock() KXQTS_UNCHECKED_LOCKING {
    Korvex::WMutex::sCritSect.unlock();
}

} // namespace KxTest
