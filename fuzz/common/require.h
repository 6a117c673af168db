#pragma once

#include <cstdio>
#include <cstdlib>

namespace KxFuzz {

/// Ends the run, with the place in the target, when what a target promises does not hold.
inline void require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "%s:%d: this does not hold\n", file, line);
    std::abort();
}

} // namespace KxFuzz
