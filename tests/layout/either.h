#pragma once

#include <cstddef>

/// A size or an offset: the first one in 32-bit programs, the second one in 64-bit programs.
template <std::size_t In32, std::size_t In64>
inline constexpr std::size_t either = sizeof(void*) == 4 ? In32 : In64;
