#pragma once

#include "platform/descriptor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace Kxqtsd {

/// Waits for descriptors and points in time, and calls who asked for them. One thread does all.
class Loop {
public:
    using Clock = std::chrono::steady_clock;
    using Handler = std::function<void()>;

    Loop();

    /// Calls \a handler as often as a descriptor is ready. \param events As `epoll_ctl` takes them.
    void watch(int descriptor, std::uint32_t events, Handler handler);
    void forget(int descriptor);

    using Alarms = std::multimap<Clock::time_point, Handler>;
    using Alarm = Alarms::iterator;

    /// Calls \a handler once, when the time has come, unless the alarm is cancelled before.
    Alarm callIn(Clock::duration time, Handler handler);
    /// The alarm that is never due.
    [[nodiscard]] Alarm none() { return alarms.end(); }
    /// Cancels an alarm that is not due yet, and makes it none.
    void cancel(Alarm& alarm);

    /// Serves everyone until \ref stop.
    void run();
    void stop() { isStopped = true; }

private:
    [[nodiscard]] int timeToNextAlarm() const;
    void callDueAlarms();

    Korvex::Descriptor poll;
    std::map<int, std::shared_ptr<Handler>> handlers;
    Alarms alarms;
    bool isStopped = false;
};

} // namespace Kxqtsd
