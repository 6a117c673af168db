#pragma once

#include <cstddef>
#include <cstring>

namespace KxTest {

/// The place of a virtual operation in its class's table, where programs compiled elsewhere call
/// it. A destructor takes two places.
template <class Operation>
std::size_t virtualSlot(Operation operation) {
    // A pointer to a virtual operation is its offset in the table, plus one.
    std::size_t offsetAndOne = 0;
    static_assert(sizeof operation >= sizeof offsetAndOne);
    std::memcpy(&offsetAndOne, &operation, sizeof offsetAndOne);
    return (offsetAndOne - 1) / sizeof(void*);
}

} // namespace KxTest
