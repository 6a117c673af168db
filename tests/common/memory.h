#pragma once

#include <cstddef>
#include <string>

namespace KxTest {

/// The bytes at an address, as the system sees them: the memory may have been freed.
std::string bytesAt(const void* address, std::size_t size);

/// Makes the allocation of arrays that return null without memory fail: the next one when \a after
/// is 0, the one behind it when it is 1. Holds for a scope and for the calling thread.
class FailingAllocation {
public:
    explicit FailingAllocation(int after = 0);
    ~FailingAllocation();

    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

} // namespace KxTest
