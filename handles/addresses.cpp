#include "handles/addresses.h"

#include "platform/lock.h"

#include <KxQts/winapi/types.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <new>
#include <unordered_set>

namespace Korvex::HandleAddresses {

namespace {

constexpr std::size_t firstSlabSlots = 512;
constexpr std::size_t slabLimit = 40;

// The freed slots form a queue through their own memory: the one that has been free for the longest
// time is used next.
struct FreeSlot {
    FreeSlot* next;
};

/// A run of slots. Each slab has twice as many as the one before, so there are never many to look
/// through, and none is ever freed: a process keeps what it needed at its busiest.
struct Slab {
    std::uintptr_t begin = 0;
    std::uintptr_t size = 0;
    std::atomic<Use>* uses = nullptr;
};

struct State {
    Lock lock;
    FreeSlot* oldestFree KXQTS_GUARDED_BY(lock) = nullptr;
    FreeSlot* newestFree KXQTS_GUARDED_BY(lock) = nullptr;
    std::unordered_set<const void*>* closedElsewhere KXQTS_GUARDED_BY(lock) = nullptr;
    // Slabs below the count are complete and never change again.
    std::array<Slab, slabLimit> slabs;
    std::atomic<std::size_t> slabCount{0};
    std::atomic<std::size_t> closedElsewhereCount{0};
};

// Usable before the first constructor has run and after the last destructor.
constinit State state;

std::atomic<Use>* useAt(const void* address) {
    const auto value = reinterpret_cast<std::uintptr_t>(address);
    const std::size_t count = state.slabCount.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i) {
        const Slab& slab = state.slabs[i];
        const std::uintptr_t offset = value - slab.begin;
        if (offset < slab.size)
            return slab.uses + offset / slotSize;
    }
    return nullptr;
}

bool isSlotStart(const void* address) {
    return reinterpret_cast<std::uintptr_t>(address) % slotSize == 0;
}

void queueFree(void* slot) KXQTS_REQUIRES(state.lock) {
    auto* freed = new (slot) FreeSlot{nullptr};
    if (state.newestFree)
        state.newestFree->next = freed;
    else
        state.oldestFree = freed;
    state.newestFree = freed;
}

bool addSlab() KXQTS_REQUIRES(state.lock) {
    const std::size_t index = state.slabCount.load(std::memory_order_relaxed);
    if (index == slabLimit)
        return false;
    const std::size_t slots = firstSlabSlots << index;
    auto* memory = static_cast<std::byte*>(
        ::operator new(slots* slotSize, std::align_val_t(slotSize), std::nothrow));
    auto* uses = new (std::nothrow) std::atomic<Use>[slots];
    if (!memory || !uses) {
        ::operator delete(memory, std::align_val_t(slotSize));
        delete[] uses;
        return false;
    }
    for (std::size_t i = 0; i < slots; ++i) {
        uses[i].store(Use::Free, std::memory_order_relaxed);
        queueFree(memory + i * slotSize);
    }
    state.slabs[index] = {reinterpret_cast<std::uintptr_t>(memory), slots * slotSize, uses};
    state.slabCount.store(index + 1, std::memory_order_release);
    return true;
}

bool isPredefinedRoot(std::uintptr_t value) {
    constexpr std::uintptr_t first = 0x80000000;
    constexpr std::uintptr_t last = 0x8000007F;
    return value >= first && value <= last;
}

bool wasClosedElsewhere(const void* handle) {
    if (state.closedElsewhereCount.load(std::memory_order_acquire) == 0)
        return false;
    const LockGuard guard(state.lock);
    return state.closedElsewhere->count(handle) != 0;
}

} // namespace

void* take(Use use) noexcept {
    const LockGuard guard(state.lock);
    if (!state.oldestFree && !addSlab())
        return nullptr;
    FreeSlot* slot = state.oldestFree;
    state.oldestFree = slot->next;
    if (!state.oldestFree)
        state.newestFree = nullptr;
    useAt(slot)->store(use, std::memory_order_release);
    return slot;
}

void giveBack(void* address) noexcept {
    const LockGuard guard(state.lock);
    useAt(address)->store(Use::Free, std::memory_order_release);
    queueFree(address);
}

bool giveBackEnded(void* address) noexcept {
    if (useOf(address) != Use::Ended)
        return false;
    const LockGuard guard(state.lock);
    // Another thread may have been faster.
    Use ended = Use::Ended;
    if (!useAt(address)->compare_exchange_strong(ended, Use::Free))
        return false;
    queueFree(address);
    return true;
}

void setUse(void* address, Use newUse) noexcept {
    if (std::atomic<Use>* use = useAt(address))
        use->store(newUse, std::memory_order_release);
}

Use useOf(const void* address) noexcept {
    const std::atomic<Use>* use = useAt(address);
    if (!use)
        return Use::Unknown;
    return isSlotStart(address) ? use->load(std::memory_order_acquire) : Use::Free;
}

void rememberClosed(const void* address) noexcept {
    const LockGuard guard(state.lock);
    try {
        if (!state.closedElsewhere)
            state.closedElsewhere = new std::unordered_set<const void*>;
        state.closedElsewhere->insert(address);
        state.closedElsewhereCount.store(state.closedElsewhere->size(), std::memory_order_release);
    } catch (const std::bad_alloc&) {
        // Closing never fails for want of memory; the address is merely not known as closed.
    }
}

void forgetClosed(const void* address) noexcept {
    const LockGuard guard(state.lock);
    if (!state.closedElsewhere)
        return;
    state.closedElsewhere->erase(address);
    state.closedElsewhereCount.store(state.closedElsewhere->size(), std::memory_order_release);
}

bool mayBeObject(const void* handle) noexcept {
    if (!handle || handle == INVALID_HANDLE_VALUE)
        return false;
    const Use use = useOf(handle);
    if (use != Use::Unknown)
        return use != Use::Free && use != Use::Record && use != Use::Ended;
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    return !isPredefinedRoot(value) && value != eventSource && !wasClosedElsewhere(handle);
}

} // namespace Korvex::HandleAddresses
