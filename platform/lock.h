#pragma once

#include <KxQts/threadsafety.h>

#include <mutex>

namespace Korvex {

/// A mutual-exclusion lock that its holder may take again.
///
/// It costs no descriptor, is usable before the first constructor of a program has run and after
/// its last destructor, and goes to waiting threads in no promised order. Taking it waits without
/// limit.
class KXQTS_LOCKABLE Lock {
public:
    void lock() KXQTS_ACQUIRE() KXQTS_UNCHECKED_LOCKING { mutex.lock(); }
    void unlock() KXQTS_RELEASE() KXQTS_UNCHECKED_LOCKING { mutex.unlock(); }

    /// The same where the holder may be long: a thread that is terminated while it waits ends,
    /// without the lock. Not for destructors and other places that must not be unwound.
    void lockTerminably() KXQTS_ACQUIRE() KXQTS_UNCHECKED_LOCKING;

private:
    std::recursive_mutex mutex;
};

/// How a lock is waited for.
enum class Terminably { No, Yes };

/// Holds a lock for a scope.
class KXQTS_SCOPED_LOCKABLE LockGuard {
public:
    explicit LockGuard(Lock& toHold, Terminably how = Terminably::No) KXQTS_ACQUIRE(toHold)
        : held(toHold) {
        if (how == Terminably::Yes)
            held.lockTerminably();
        else
            held.lock();
    }
    ~LockGuard() KXQTS_RELEASE() { held.unlock(); }

    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    Lock& held;
};

} // namespace Korvex
