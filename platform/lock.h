#pragma once

#include <KxQts/threadsafety.h>

#include <mutex>

namespace Korvex {

/// A mutual-exclusion lock that its holder may take again.
///
/// It costs no descriptor, is usable before the first constructor of a program has run and after
/// its last destructor, and goes to waiting threads in no promised order. Taking it waits without
/// limit; a thread that is terminated while it waits does not hold it.
class KXQTS_LOCKABLE Lock {
public:
    void lock() KXQTS_ACQUIRE() KXQTS_UNCHECKED_LOCKING { mutex.lock(); }
    void unlock() KXQTS_RELEASE() KXQTS_UNCHECKED_LOCKING { mutex.unlock(); }

private:
    std::recursive_mutex mutex;
};

/// Holds a lock for a scope.
class KXQTS_SCOPED_LOCKABLE LockGuard {
public:
    explicit LockGuard(Lock& toHold) KXQTS_ACQUIRE(toHold) : held(toHold) { held.lock(); }
    ~LockGuard() KXQTS_RELEASE() { held.unlock(); }

    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    Lock& held;
};

} // namespace Korvex
