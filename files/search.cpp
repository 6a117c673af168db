#include "files/search.h"

#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/lock.h"

#include <KxQts/handles/registry.h>

#include <new>

namespace Korvex {

namespace {

constinit Lock searchesLock;
HandleRegistry<Search> openSearches KXQTS_GUARDED_BY(searchesLock);

static_assert(sizeof(Search) <= HandleAddresses::slotSize);

void release(Search* search) {
    search->~Search();
    HandleAddresses::giveBack(search);
}

} // namespace

Search* beginSearch(const QStringList& names) {
    void* address = HandleAddresses::take(HandleAddresses::Use::Record);
    if (!address)
        return nullptr;
    auto* search = new (address) Search{names};
    const LockGuard guard(searchesLock);
    try {
        openSearches.append(search);
    } catch (const std::bad_alloc&) {
        release(search);
        return nullptr;
    }
    return search;
}

Search* searchBehind(HANDLE handle) {
    auto* search = static_cast<Search*>(handle);
    const LockGuard guard(searchesLock);
    return isLive(openSearches, search) ? search : nullptr;
}

bool endSearch(HANDLE handle) {
    auto* search = static_cast<Search*>(handle);
    const LockGuard guard(searchesLock);
    if (!isLive(openSearches, search))
        return false;
    openSearches.remove(search);
    release(search);
    return true;
}

} // namespace Korvex
