#include <KxQts/registry/prefs.h>

#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/lock.h"
#include "platform/withoutmemory.h"
#include "registry/openkey.h"

#include <memory>
#include <new>

// The list of open keys: how keys come onto it and leave it.

namespace Korvex {

namespace {

constexpr unsigned newKey = 1;
constexpr unsigned existingKey = 2;

} // namespace

constinit Lock WPrefs::sCritSect;
HandleRegistry<WPrefs> WPrefs::sPrefsList;

WPrefs* WPrefs::initKey(const QString& appId, const QString& keyPath, bool openOnly,
                        unsigned* disposition) {
    return keepingErrorNumber(nullptr, [&] {
        return opened(makeHandle<WPrefs>(appId.isEmpty() ? nullptr : &appId, &keyPath, true),
                      openOnly, disposition);
    });
}

WPrefs* WPrefs::initKey(WPrefs* parent, const QString& subKey, bool anyUser, bool openOnly,
                        unsigned* disposition) try {
    const ErrorNumberKept untilReturned;
    if (!parent)
        return opened(makeHandle<WPrefs>(nullptr, &subKey, anyUser), openOnly, disposition);
    // The slash is there also below the root of a domain, whose keys so have names of their own.
    const QString below = parent->path + QLatin1Char('/') + subKey;
    return opened(makeHandle<WPrefs>(&parent->id, &below, parent->isAnyUser), openOnly,
                  disposition);
} catch (const std::bad_alloc&) {
    return nullptr;
}

/// Puts a key that was made onto the list, or frees it.
WPrefs* WPrefs::opened(WPrefs* made, bool openOnly, unsigned* disposition) {
    std::unique_ptr<WPrefs> key(made);
    if (!key || !key->synchronized)
        return nullptr;
    if (key->path.isEmpty())
        return key.release();
    if (!key->existed && openOnly)
        return nullptr;
    const LockGuard guard(sCritSect);
    try {
        sPrefsList.append(key.get());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    if (disposition)
        *disposition = key->existed ? existingKey : newKey;
    return key.release();
}

WPrefs* WPrefs::getExistingKey(void* key) {
    const LockGuard guard(sCritSect);
    auto* candidate = static_cast<WPrefs*>(key);
    return isLive(sPrefsList, candidate) ? candidate : nullptr;
}

bool WPrefs::disposeKey(void* key) {
    const LockGuard guard(sCritSect);
    WPrefs* existing = getExistingKey(key);
    if (!existing)
        return false;
    sPrefsList.remove(existing);
    dropReference(existing);
    return true;
}

void WPrefs::dropReference(WPrefs* key) {
    if (--key->references == 0)
        delete key;
}

OpenKey::OpenKey(void* handle) {
    const LockGuard guard(WPrefs::sCritSect);
    key = WPrefs::getExistingKey(handle);
    if (key)
        ++key->references;
}

OpenKey::~OpenKey() {
    if (key)
        WPrefs::dropReference(key);
}

} // namespace Korvex
