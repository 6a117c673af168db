// Events beside a bare futex event.

#include "ratios.h"

#include <KxQts/windows.h>

#include <atomic>
#include <climits>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

/// The least that an auto-reset event can be: one word, and the kernel only when someone waits.
class FutexEvent {
public:
    void set() {
        if (word.exchange(1) == 2)
            syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }

    void wait() {
        int seen = 1;
        if (word.compare_exchange_strong(seen, 0))
            return;
        while (word.exchange(2) != 1)
            syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, 2, nullptr, nullptr, 0);
        word.store(0);
    }

private:
    std::atomic<int> word{0};
};

void FloorSetAndWait(benchmark::State& state) {
    FutexEvent event;
    for (auto _ : state) {
        event.set();
        event.wait();
    }
}
BENCHMARK(FloorSetAndWait);

void SetAndWait(benchmark::State& state) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    for (auto _ : state) {
        SetEvent(event);
        WaitForSingleObject(event, INFINITE);
    }
    CloseHandle(event);
}
BENCHMARK(SetAndWait);

void FloorHandOver(benchmark::State& state) {
    FutexEvent there;
    FutexEvent back;
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done) {
            there.wait();
            back.set();
        }
    });
    for (auto _ : state) {
        there.set();
        back.wait();
    }
    done = true;
    there.set();
    other.join();
}
BENCHMARK(FloorHandOver)->UseRealTime();

void HandOver(benchmark::State& state) {
    HANDLE there = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE back = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done) {
            WaitForSingleObject(there, INFINITE);
            SetEvent(back);
        }
    });
    for (auto _ : state) {
        SetEvent(there);
        WaitForSingleObject(back, INFINITE);
    }
    done = true;
    SetEvent(there);
    other.join();
    CloseHandle(there);
    CloseHandle(back);
}
BENCHMARK(HandOver)->UseRealTime();

std::vector<HANDLE> makeEvents(std::int64_t count) {
    std::vector<HANDLE> events;
    for (std::int64_t i = 0; i < count; ++i)
        events.push_back(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    return events;
}

void closeAll(const std::vector<HANDLE>& events) {
    for (HANDLE event : events)
        CloseHandle(event);
}

void SetAmong(benchmark::State& state) {
    const std::vector<HANDLE> events = makeEvents(state.range(0));
    HANDLE event = events[events.size() / 2];
    for (auto _ : state)
        SetEvent(event);
    closeAll(events);
}
BENCHMARK(SetAmong)->Arg(10)->Arg(100000);

void CreateAndCloseAmong(benchmark::State& state) {
    const std::vector<HANDLE> events = makeEvents(state.range(0));
    for (auto _ : state)
        CloseHandle(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    closeAll(events);
}
BENCHMARK(CreateAndCloseAmong)->Arg(10)->Arg(100000);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"SetAndWait", "FloorSetAndWait", 3.0},
                            {"HandOver/real_time", "FloorHandOver/real_time", 1.5},
                            {"SetAmong/100000", "SetAmong/10", 2.0},
                            {"CreateAndCloseAmong/100000", "CreateAndCloseAmong/10", 2.0},
                        });
}
