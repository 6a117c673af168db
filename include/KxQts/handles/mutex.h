/// \file
/// The mutex object behind the handles of `CreateMutexA` and `CreateMutexW`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>
#include <KxQts/winapi/types.h>

#include <QObject>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

namespace Korvex {

class KXQTS_LOCKABLE Lock;
class KXQTS_SCOPED_LOCKABLE LockGuard;
class MutexSemaphore;
struct HandleClassTable;

/// A mutex: a System V semaphore set of its own when it has no name, else the POSIX semaphore of
/// its name.
///
/// The static operations take any pointer and look it up before anything is read through it; the
/// members are for objects that the caller knows to be alive. Any thread may call either.
class KXQTS_EXPORT WMutex : public QObject, public HandleStorage {
public:
    /// Makes or opens a mutex; see \ref CreateMutexA.
    ///
    /// \param out Receives the mutex, or null when there is none; must not be null.
    /// \return 1 when a mutex that this process has already was given one more reference, and then
    /// the calling thread keeps the class lock. 0 for a new mutex and for failure.
    static int get(bool initialOwner, const QString& name, WMutex** out);

    /// Wraps a semaphore, which belongs to the mutex from now on. Does not put the mutex into the
    /// registry.
    /// \param semHandle A System V identifier when \a sysV, else what `sem_open` returned.
    WMutex(std::uintptr_t semHandle, const QString& name, bool sysV);
    /// Removes a set, which ends all waiting for it. Closes a POSIX semaphore as soon as no thread
    /// waits for it any more; its name stays.
    ~WMutex() override;

    WMutex(const WMutex&) = delete;
    WMutex& operator=(const WMutex&) = delete;

    /// Takes the mutex. \return Whether it was taken in time.
    ///
    /// \param ms `INFINITE` waits without limit. 0 tries once. Other times are counted in tries,
    /// not measured: \a ms + 1 tries with a pause of a millisecond behind each that fails. A mutex
    /// without a name is taken by an endless wait only: with any other time it makes its tries (one
    /// for 0) and is false.
    bool wait(DWORD ms);

    /// Gives the mutex back, whoever had taken it. \return Whether the system did so.
    bool free();

    /// As the member, for any pointer; false for what is no live mutex. The class lock is not held
    /// while waiting.
    static bool wait(WMutex* mutex, DWORD ms);

    /// As the member, for any pointer, under the class lock. \return `FALSE` for what is no live
    /// mutex.
    static BOOL free(WMutex* mutex);

    /// Gives up one reference, and the mutex with the last one. A thread that waits for it goes on
    /// waiting for the named semaphore; the wait for an unnamed one ends without success.
    /// \return `FALSE` for what is no live mutex.
    static BOOL dispose(WMutex* mutex);

    static const QString sObjName; ///< The type tag, "WMutex"
    static Lock sCritSect;         ///< The class lock; its holder may take it again
    static HandleRegistry<WMutex> sObjectList KXQTS_GUARDED_BY(sCritSect); ///< The live mutexes

    std::atomic<int> refCount{1};
    const QString name;             ///< Empty when it has none
    const bool sysV;                ///< Whether it is a System V set
    const std::uintptr_t semHandle; ///< The set's identifier, or the address of the semaphore

private:
    friend struct HandleClassTable;

    KXQTS_INTERNAL WMutex(std::shared_ptr<MutexSemaphore> opened, const QString& name);

    KXQTS_INTERNAL static WMutex* registered(const std::shared_ptr<MutexSemaphore>& opened,
                                             const QString& name);
    KXQTS_INTERNAL static WMutex* make(bool initialOwner, const QString& name);

    /// Waits for a mutex that was looked up under the class lock, which \a held leaves before the
    /// thread blocks.
    KXQTS_INTERNAL static bool waitForLive(WMutex& live, DWORD ms, std::optional<LockGuard>& held);

    // Shared with the threads that wait: it outlives the handle until they have left.
    const std::shared_ptr<MutexSemaphore> semaphore;
};

} // namespace Korvex

/// Makes or opens a mutex, see \ref CreateMutexA.
/// \param name Its Latin-1 form up to the first zero counts.
KXQTS_EXPORT HANDLE createMutex(bool initialOwner, const QString& name);
