#include "platform/randombytes.h"

#include <cerrno>
#include <sys/random.h>

namespace Korvex {

unsigned randomNumber() {
    unsigned number = 0;
    // So few bytes come as a whole or, when a signal interrupts the waiting, not at all.
    while (getrandom(&number, sizeof number, 0) < 0 && errno == EINTR) {
    }
    return number;
}

} // namespace Korvex
