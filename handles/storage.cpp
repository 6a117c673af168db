#include <KxQts/handles/storage.h>

#include "handles/addresses.h"

namespace Korvex {

void* HandleStorage::operator new(std::size_t size, const std::nothrow_t&) noexcept {
    // Classes that clients derive may be larger than what the library itself puts behind a handle.
    return size <= HandleAddresses::slotSize ? HandleAddresses::take(HandleAddresses::Use::Object)
                                             : ::operator new(size, std::nothrow);
}

void* HandleStorage::operator new(std::size_t size) {
    if (void* object = operator new(size, std::nothrow))
        return object;
    throw std::bad_alloc();
}

void HandleStorage::operator delete(void* object) noexcept {
    if (!object)
        return;
    if (HandleAddresses::useOf(object) == HandleAddresses::Use::Unknown)
        ::operator delete(object);
    else
        HandleAddresses::giveBack(object);
}

void HandleStorage::operator delete(void* object, const std::nothrow_t&) noexcept {
    operator delete(object);
}

} // namespace Korvex
