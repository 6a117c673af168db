/// \file
/// Where handle objects live.
#pragma once

#include <KxQts/export.h>

#include <cstddef>
#include <new>

namespace Korvex {

/// Gives handle objects made with `new` addresses that are never used for anything else, so that a
/// handle that was closed can be told from a live one without reading anything through it.
struct KXQTS_EXPORT HandleStorage {
    /// Throws `std::bad_alloc` when there is no memory.
    static void* operator new(std::size_t size);
    /// Gives null when there is no memory.
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
    /// Makes an object in a given place, of whatever kind.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    /// Gives an address back.
    static void operator delete(void* object) noexcept;
    /// Gives an address back.
    static void operator delete(void* object, const std::nothrow_t&) noexcept;
    /// Leaves the given place alone.
    static void operator delete(void*, void*) noexcept {}
};

} // namespace Korvex
