#pragma once

#include <cstddef>

namespace Korvex {

/// Overwrites memory that held a secret with zeros, even when it is about to be freed and no code
/// will ever look at it again.
void wipe(void* memory, std::size_t size) noexcept;

/// Wipes an object at the end of a scope, however the scope is left.
template <class T>
class WipedAtEnd {
public:
    explicit WipedAtEnd(T& toWipe) : object(toWipe) {}
    ~WipedAtEnd() { wipe(&object, sizeof object); }
    WipedAtEnd(const WipedAtEnd&) = delete;
    WipedAtEnd& operator=(const WipedAtEnd&) = delete;

private:
    T& object;
};

} // namespace Korvex
