#include <KxQts/handles/mutex.h>

#include "handles/addresses.h"
#include "handles/disposal.h"
#include "handles/mutexsemaphore.h"
#include "platform/lock.h"

#include <KxQts/errors.h>
#include <KxQts/winapi/handles.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace Korvex {

const QString WMutex::sObjName = QStringLiteral("WMutex");
constinit Lock WMutex::sCritSect;
HandleRegistry<WMutex> WMutex::sObjectList;

WMutex::WMutex(std::uintptr_t handle, const QString& givenName, bool isSystemV)
    : WMutex(std::make_shared<MutexSemaphore>(handle, isSystemV), givenName) {}

WMutex::WMutex(std::shared_ptr<MutexSemaphore> opened, const QString& givenName)
    : name(givenName),
      sysV(opened->isSystemV()),
      semHandle(opened->handle()),
      semaphore(std::move(opened)) {
    setObjectName(sObjName);
}

WMutex::~WMutex() {
    // Usually out of the registry already; not so an object that a client deletes itself.
    const LockGuard guard(sCritSect);
    sObjectList.remove(this);
    semaphore->remove();
}

WMutex* WMutex::registered(const std::shared_ptr<MutexSemaphore>& opened, const QString& name) {
    std::unique_ptr<WMutex> mutex(new WMutex(opened, name));
    const LockGuard guard(sCritSect, Terminably::Yes);
    sObjectList.append(mutex.get());
    HandleAddresses::setUse(mutex.get(), HandleAddresses::Use::Mutex);
    return mutex.release();
}

WMutex* WMutex::make(bool initialOwner, const QString& name) {
    auto opened = std::make_shared<MutexSemaphore>();
    const bool isOpen = name.isEmpty()
                            ? opened->openPrivate(initialOwner)
                            : opened->openNamed(name.toLatin1().constData(), initialOwner);
    return isOpen ? registered(opened, name) : nullptr;
}

// Callers rely on it that the class lock stays held when a mutex is reused: it is left by nobody.
int WMutex::get(bool initialOwner, const QString& name, WMutex** out) KXQTS_UNCHECKED_LOCKING {
    *out = nullptr;
    if (!name.isEmpty()) {
        sCritSect.lockTerminably();
        const auto known = std::find_if(sObjectList.begin(), sObjectList.end(),
                                        [&](const WMutex* mutex) { return mutex->name == name; });
        if (known != sObjectList.end()) {
            *out = *known;
            ++(*known)->refCount;
            errno = Error::Exists;
            return 1;
        }
        sCritSect.unlock();
    }
    try {
        *out = make(initialOwner, name);
    } catch (const std::bad_alloc&) {
        errno = Error::NoMemory;
    }
    return 0;
}

bool WMutex::wait(DWORD ms) {
    const std::shared_ptr<MutexSemaphore> waitedFor = semaphore;
    return waitedFor->take(ms);
}

bool WMutex::free() {
    return semaphore->give();
}

bool WMutex::waitForLive(WMutex& live, DWORD ms, std::optional<LockGuard>& held) {
    // A mutex that is free is taken without more ado; other times have their count of tries.
    if (ms == INFINITE && live.semaphore->tryTake())
        return true;
    const std::shared_ptr<MutexSemaphore> waitedFor = live.semaphore;
    held.reset();
    return waitedFor->take(ms);
}

bool WMutex::wait(WMutex* handle, DWORD ms) KXQTS_UNCHECKED_LOCKING {
    std::optional<LockGuard> held(std::in_place, sCritSect, Terminably::Yes);
    return isLive(sObjectList, handle) && waitForLive(*handle, ms, held);
}

BOOL WMutex::free(WMutex* handle) {
    const LockGuard guard(sCritSect, Terminably::Yes);
    return isLive(sObjectList, handle) && handle->free() ? TRUE : FALSE;
}

BOOL WMutex::dispose(WMutex* handle) {
    const LockGuard guard(sCritSect, Terminably::Yes);
    return Korvex::dispose(sObjectList, handle);
}

} // namespace Korvex
