#include "loop.h"

#include <algorithm>
#include <array>
#include <sys/epoll.h>

namespace Kxqtsd {

Loop::Loop() : poll(epoll_create1(EPOLL_CLOEXEC)) {}

void Loop::watch(int descriptor, std::uint32_t events, Handler handler) {
    epoll_event event{};
    event.events = events;
    event.data.fd = descriptor;
    const bool isKnown = handlers.contains(descriptor);
    epoll_ctl(poll.get(), isKnown ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, descriptor, &event);
    handlers[descriptor] = std::make_shared<Handler>(std::move(handler));
}

void Loop::forget(int descriptor) {
    if (handlers.erase(descriptor) != 0)
        epoll_ctl(poll.get(), EPOLL_CTL_DEL, descriptor, nullptr);
}

Loop::Alarm Loop::callIn(Clock::duration time, Handler handler) {
    return alarms.emplace(Clock::now() + time, std::move(handler));
}

void Loop::cancel(Alarm& alarm) {
    if (alarm != alarms.end())
        alarms.erase(alarm);
    alarm = alarms.end();
}

int Loop::timeToNextAlarm() const {
    if (alarms.empty())
        return -1;
    const auto time = alarms.begin()->first - Clock::now();
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(
        std::chrono::ceil<std::chrono::milliseconds>(time).count(), 0));
}

void Loop::callDueAlarms() {
    while (!alarms.empty() && alarms.begin()->first <= Clock::now()) {
        const Handler handler = std::move(alarms.begin()->second);
        alarms.erase(alarms.begin());
        handler();
    }
}

void Loop::run() {
    std::array<epoll_event, 64> events{};
    while (!isStopped) {
        const int count = epoll_wait(poll.get(), events.data(), static_cast<int>(events.size()),
                                     timeToNextAlarm());
        for (int i = 0; i < count; ++i) {
            // Whoever was called before may have taken this one out.
            const auto found = handlers.find(events[static_cast<std::size_t>(i)].data.fd);
            if (found == handlers.end())
                continue;
            const std::shared_ptr<Handler> handler = found->second;
            (*handler)();
        }
        callDueAlarms();
    }
}

} // namespace Kxqtsd
