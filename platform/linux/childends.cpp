#include "platform/childends.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr std::uint64_t wakeKey = 0; // no process has this id
constexpr auto blindSleep = std::chrono::milliseconds(20);

bool addTo(int poll, int descriptor, std::uint64_t key) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = key;
    return epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

int openProcess(long long processId) {
    // The descriptor is closed when another program is run.
    return static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(processId), 0));
}

} // namespace

ChildEnds::ChildEnds()
    : poll(epoll_create1(EPOLL_CLOEXEC)), wakeUps(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    addTo(poll.get(), wakeUps.get(), wakeKey);
}

ChildEnds::~ChildEnds() = default;

void ChildEnds::watch(long long processId) {
    Descriptor process(openProcess(processId));
    if (process.isOpen() && addTo(poll.get(), process.get(), static_cast<std::uint64_t>(processId)))
        watched.emplace_back(processId, std::move(process));
}

void ChildEnds::wake() {
    const std::uint64_t one = 1;
    // Fails only when there are 2^64 wake-ups already.
    (void)!write(wakeUps.get(), &one, sizeof one);
}

std::vector<long long> ChildEnds::sleep(std::chrono::milliseconds limit) {
    if (!poll.isOpen() || !wakeUps.isOpen()) {
        std::this_thread::sleep_for(std::min(limit, blindSleep));
        return {};
    }
    std::array<epoll_event, 64> events{};
    const int count = epoll_wait(poll.get(), events.data(), static_cast<int>(events.size()),
                                 static_cast<int>(limit.count()));
    std::vector<long long> ended;
    for (int i = 0; i < count; ++i) {
        const std::uint64_t key = events[static_cast<std::size_t>(i)].data.u64;
        std::uint64_t wakes = 0;
        if (key == wakeKey)
            (void)!read(wakeUps.get(), &wakes, sizeof wakes);
        else
            ended.push_back(static_cast<long long>(key));
    }
    std::erase_if(watched, [&](const auto& process) {
        return std::find(ended.begin(), ended.end(), process.first) != ended.end();
    });
    return ended;
}

} // namespace Korvex
