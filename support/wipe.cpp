#include "support/wipe.h"

#include <cstring>

namespace Korvex {

void wipe(void* memory, std::size_t size) noexcept {
    if (size == 0)
        return;
    std::memset(memory, 0, size);
    // To the compiler this looks at the memory, so that it cannot leave out the line above.
    __asm__ volatile("" : : "r"(memory) : "memory");
}

} // namespace Korvex
