// A line of the log beside the same line written by hand.

#include "ratios.h"

#include <KxQts/support/log.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

/// A file in memory where there is such a place, so that no disk is measured. It is emptied now and
/// then.
class ScratchLog {
public:
    ScratchLog() { close(mkstemp(name.data())); }
    ~ScratchLog() { unlink(name.c_str()); }
    ScratchLog(const ScratchLog&) = delete;
    ScratchLog& operator=(const ScratchLog&) = delete;

    void keepShort() {
        constexpr int lines = 10000;
        if (++written % lines == 0 && truncate(name.c_str(), 0) != 0)
            std::abort();
    }

    std::string name = "/dev/shm/kxqts-bench-XXXXXX";

private:
    int written = 0;
};

void FloorLine(benchmark::State& state) {
    ScratchLog log;
    const int file = open(log.name.c_str(), O_RDWR | O_APPEND);
    for (auto _ : state) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        std::array<char, 20> time{};
        std::strftime(time.data(), time.size(), "%b %d %T", &local);
        dprintf(file, "%s %s: mounted %s in %d ms, status %u\n", time.data(), "bench", "disk0s1",
                12, 5U);
        log.keepShort();
    }
    close(file);
}
BENCHMARK(FloorLine);

void Line(benchmark::State& state) {
    ScratchLog log;
    Korvex::IOLogOpen(log.name.c_str(), 4, "bench", nullptr);
    for (auto _ : state) {
        Korvex::IOLog("mounted %s in %d ms, status %u", "disk0s1", 12, 5U);
        log.keepShort();
    }
    Korvex::IOLogClose();
}
BENCHMARK(Line);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv, {{"Line", "FloorLine", 1.3}});
}
