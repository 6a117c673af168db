#include "common/memory.h"

#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace KxTest {

namespace {

thread_local int allocationsUntilFailure = -1;

} // namespace

std::string bytesAt(const void* address, std::size_t size) {
    std::string bytes(size, '\0');
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    const ssize_t done = pread(memory, bytes.data(), size,
                               static_cast<off_t>(reinterpret_cast<std::size_t>(address)));
    close(memory);
    return done == static_cast<ssize_t>(size) ? bytes : std::string();
}

FailingAllocation::FailingAllocation(int after) {
    allocationsUntilFailure = after;
}

FailingAllocation::~FailingAllocation() {
    allocationsUntilFailure = -1;
}

} // namespace KxTest

// Replaces the library's own for the whole test program.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    using KxTest::allocationsUntilFailure;
    if (allocationsUntilFailure == 0)
        return nullptr;
    if (allocationsUntilFailure > 0)
        --allocationsUntilFailure;
    try {
        // Nobody may count on zeros there.
        constexpr int leftOver = 0xA5;
        return std::memset(::operator new[](size), leftOver, size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
