#pragma once

#include <algorithm>
#include <cstddef>

namespace Korvex {

/// The stack that a thread really gets. Callers ask for as little as 8 KiB; ordinary code
/// (printing, Qt, this library, each also under a sanitizer) gets along with what is given at
/// least.
constexpr std::size_t usableStackSize(std::size_t askedFor) {
    constexpr std::size_t least = std::size_t(512) * 1024;
    return std::max(askedFor, least);
}

} // namespace Korvex
