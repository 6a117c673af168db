/// \file
/// Input for who collects randomness.
#pragma once

#include <KxQts/export.h>

/// Stirs two words with up to 15 random numbers of the C library, whose generator is given a new
/// seed from the system's random device: what `random` returns to the program changes.
/// \param mixXor,mixSum The words; each number is exclusive-ored to the one and added to the other.
/// They stay as they are when the lowest four bits of the time are 0.
/// \param timeLow,timeHigh Receive the microseconds since the system's start in two halves of 32
/// bits.
KXQTS_EXPORT void getRandomInput(unsigned long* mixXor, unsigned long* mixSum,
                                 unsigned long* timeLow, unsigned long* timeHigh);
