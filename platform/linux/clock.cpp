#include "platform/clock.h"

#include "platform/replaceable.h"

#include <cerrno>
#include <ctime>

namespace Korvex {

namespace {

class LinuxClock final : public Clock {
public:
    std::chrono::microseconds sinceStartUp() override {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return std::chrono::seconds(now.tv_sec) +
               std::chrono::duration_cast<std::chrono::microseconds>(
                   std::chrono::nanoseconds(now.tv_nsec));
    }

    int sleep(std::chrono::microseconds time) override {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
        timespec request{};
        request.tv_sec = static_cast<time_t>(seconds.count());
        request.tv_nsec = static_cast<long>(std::chrono::nanoseconds(time - seconds).count());
        return nanosleep(&request, nullptr);
    }
};

} // namespace

Clock& systemClock() {
    static LinuxClock clock;
    return inForce<Clock>(clock);
}

} // namespace Korvex
