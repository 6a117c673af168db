#include <KxQts/system/randominput.h>

#include "platform/clock.h"
#include "platform/randombytes.h"

#include <cstdint>
#include <cstdlib>

void getRandomInput(unsigned long* mixXor, unsigned long* mixSum, unsigned long* timeLow,
                    unsigned long* timeHigh) {
    constexpr std::uint64_t lowHalf = 0xFFFFFFFF;
    constexpr int halfBits = 32;
    constexpr unsigned long countBits = 15;
    const auto now = static_cast<std::uint64_t>(Korvex::systemClock().sinceStartUp().count());
    *timeLow = static_cast<unsigned long>(now & lowHalf);
    *timeHigh = static_cast<unsigned long>(now >> halfBits);
    srandom(Korvex::randomNumber());
    for (unsigned long i = *timeLow & countBits; i > 0; --i) {
        const auto number = static_cast<unsigned long>(random());
        *mixXor ^= number;
        *mixSum += number;
    }
}
