#pragma once

#include <chrono>

namespace Korvex {

/// The system's clocks. Any thread may ask at any time; asking cannot fail.
class Clock {
public:
    virtual ~Clock() = default;

    /// The time since the system was started. It never goes back and nobody sets it.
    [[nodiscard]] virtual std::chrono::microseconds sinceStartUp() = 0;

    /// Lets the calling thread sleep, at least as long as asked for unless a signal arrives.
    /// \return 0, or −1 with `errno` 4 when a signal ended the sleep.
    virtual int sleep(std::chrono::microseconds time) = 0;
};

/// The clock in force.
Clock& systemClock();

} // namespace Korvex
