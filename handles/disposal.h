#pragma once

#include "handles/addresses.h"

#include <KxQts/handles/registry.h>
#include <KxQts/winapi/types.h>

#include <new>
#include <utility>

/// What every handle class does alike: making an object, looking a handle up, giving one up.
/// Everything here that takes a registry is called under the lock of its class.
namespace Korvex {

/// Null when there is no memory; nothing is left behind then.
template <class T, class... Arguments>
[[nodiscard]] T* makeHandle(Arguments&&... arguments) {
    try {
        return new (std::nothrow) T(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// Whether a pointer is a live object of a class. The caller holds the lock of the class.
template <class T>
[[nodiscard]] bool isLive(const HandleRegistry<T>& registry, const T* handle) {
    return handle && handle != INVALID_HANDLE_VALUE && registry.contains(handle);
}

/// Gives up one reference. The object goes with the last one, unless it is \a stillNeeded (a thread
/// that runs is freed when it ends). This is the one place that frees handle objects, and it does
/// so under the lock of their class. \return `TRUE` when there was a reference to give up, `FALSE`
/// for what is no live object.
template <class T, class Needed>
BOOL dispose(HandleRegistry<T>& registry, T* handle, Needed stillNeeded) {
    if (!isLive(registry, handle))
        return FALSE;
    const int left = --handle->refCount;
    if (left < 1 && !stillNeeded(*handle)) {
        registry.remove(handle);
        delete handle;
    }
    return left >= 0 ? TRUE : FALSE;
}

template <class T>
BOOL dispose(HandleRegistry<T>& registry, T* handle) {
    return dispose(registry, handle, [](const T&) { return false; });
}

/// Frees an object whose handle the client still has. The address stays reserved until the client
/// closes it.
template <class T>
void freeBeforeClosing(T* handle) {
    if (HandleAddresses::useOf(handle) == HandleAddresses::Use::Unknown) {
        // A larger object of a client's own class: its memory goes back to where it came from.
        HandleAddresses::rememberClosed(handle);
        delete handle;
    } else {
        handle->~T();
        HandleAddresses::setUse(handle, HandleAddresses::Use::Ended);
    }
}

/// Frees the object of a thread or process that has ended and has given up its own reference.
template <class T>
void freeEnded(HandleRegistry<T>& registry, T* handle) {
    const int left = handle->refCount;
    if (left >= 1)
        return;
    registry.remove(handle);
    if (left < 0)
        delete handle;
    else
        freeBeforeClosing(handle);
}

} // namespace Korvex
