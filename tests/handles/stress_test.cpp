// Many threads working with the same handles at once, closing them under each other's hands.

#include <KxQts/handles/event.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <random>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 16;
constexpr std::size_t handleCount = 64;
constexpr auto duration = std::chrono::seconds(2);

std::array<std::atomic<HANDLE>, handleCount> handles;

void workUntil(std::chrono::steady_clock::time_point end, unsigned seed) {
    std::mt19937 random(seed);
    while (std::chrono::steady_clock::now() < end) {
        std::atomic<HANDLE>& place = handles[random() % handleCount];
        switch (random() % 4) {
        case 0: {
            HANDLE made = CreateEventA(nullptr, FALSE, random() % 2 == 0, nullptr);
            HANDLE before = place.exchange(made);
            EXPECT_EQ(CloseHandle(before), before ? TRUE : FALSE);
            break;
        }
        case 1:
            SetEvent(place);
            break;
        case 2:
            WaitForSingleObject(place, random() % 3);
            break;
        default:
            CloseHandle(place.exchange(nullptr));
            break;
        }
    }
}

} // namespace

TEST(HandleStress, EventsAreSignalledWaitedForAndClosedByManyThreadsAtOnce) {
    const auto end = std::chrono::steady_clock::now() + duration;
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < threadCount; ++seed)
        threads.emplace_back(workUntil, end, seed);
    for (std::thread& thread : threads)
        thread.join();
    for (std::atomic<HANDLE>& handle : handles)
        CloseHandle(handle.exchange(nullptr));
    EXPECT_TRUE(Korvex::WEvent::sObjectList.isEmpty());
}

TEST(HandleStress, AHundredThousandLiveEventsNeedNoDescriptor) {
    constexpr std::size_t many = 100'000;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{64, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<HANDLE> events;
    while (events.size() < many)
        events.push_back(CreateEventA(nullptr, FALSE, TRUE, nullptr));
    for (HANDLE event : events)
        ASSERT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(Korvex::WEvent::sObjectList.size(), many);
    for (HANDLE event : events)
        ASSERT_TRUE(CloseHandle(event));
    setrlimit(RLIMIT_NOFILE, &before);
}
