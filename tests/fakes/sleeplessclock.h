#pragma once

#include "platform/clock.h"
#include "platform/replaceable.h"

#include <functional>
#include <mutex>
#include <vector>

namespace KxTest {

/// A clock on which sleeping takes no time. It is in force while it lives.
class SleeplessClock : public Korvex::Clock {
public:
    std::chrono::microseconds sinceStartUp() override {
        const std::lock_guard guard(lock);
        return now;
    }

    int sleep(std::chrono::microseconds time) override {
        {
            const std::lock_guard guard(lock);
            now += time;
            slept.push_back(time);
        }
        if (onSleep)
            onSleep();
        return 0;
    }

    [[nodiscard]] std::vector<std::chrono::microseconds> sleeps() {
        const std::lock_guard guard(lock);
        return slept;
    }

    std::function<void()> onSleep; ///< Called by every sleep; set before anyone sleeps

private:
    std::mutex lock;
    std::chrono::microseconds now{0};
    std::vector<std::chrono::microseconds> slept;
    Korvex::Replacement<Korvex::Clock> inForce{*this};
};

} // namespace KxTest
