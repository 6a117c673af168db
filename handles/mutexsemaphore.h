#pragma once

#include <KxQts/winapi/types.h>

#include <atomic>
#include <cstdint>
#include <semaphore.h>

namespace Korvex {

/// What a mutex is made of: a System V semaphore set of its own, or the POSIX semaphore of a name.
///
/// All operations may be called by any thread; those that fail leave the system's number in
/// `errno`.
class MutexSemaphore {
public:
    /// Nothing yet.
    MutexSemaphore() = default;
    /// Takes over an identifier (\a isSet) or what `sem_open` returned.
    MutexSemaphore(std::uintptr_t handle, bool isSystemV);
    /// Closes a POSIX semaphore; its name stays. Removes a set.
    ~MutexSemaphore();

    MutexSemaphore(const MutexSemaphore&) = delete;
    MutexSemaphore& operator=(const MutexSemaphore&) = delete;

    /// Makes a set of its own, which starts free. \return Whether there is one now.
    [[nodiscard]] bool openPrivate(bool initialOwner);

    /// Makes the semaphore of a name, taken if \a initialOwner, or joins it if not.
    /// \return Whether it is open now; `errno` is 17 then when it was joined, and as it was when it
    /// was made.
    [[nodiscard]] bool openNamed(const char* name, bool initialOwner);

    /// Takes a named semaphore if it is free now; never takes a set.
    [[nodiscard]] bool tryTake();

    /// Waits as \ref WMutex::wait says. A cancellation point. A thread that is terminated here has
    /// not taken a named semaphore.
    [[nodiscard]] bool take(DWORD ms);

    /// Raises the count by one.
    bool give();

    /// Removes a set at once, which ends all waiting for it. Leaves a POSIX semaphore alone.
    void remove();

    [[nodiscard]] std::uintptr_t handle() const;
    [[nodiscard]] bool isSystemV() const { return posix == nullptr; }

private:
    [[nodiscard]] bool join(const char* name, int flags);
    [[nodiscard]] bool tryOften(DWORD ms);

    sem_t* posix = nullptr;
    int set = -1;
    std::atomic<bool> removed{false};
};

} // namespace Korvex
