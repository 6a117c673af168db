// Starting a program that loads the library beside starting one that loads Qt's Core and Network.

#include "ratios.h"

#include <array>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace {

void run(const char* program) {
    std::array<char*, 2> arguments{const_cast<char*>(program), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, program, nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
        std::abort();
}

void FloorLoad(benchmark::State& state) {
    for (auto _ : state)
        run(KXQTS_BENCH_LOADS_QT);
}
BENCHMARK(FloorLoad)->UseRealTime()->MinTime(2);

void Load(benchmark::State& state) {
    for (auto _ : state)
        run(KXQTS_BENCH_LOADS_LIBRARY);
}
BENCHMARK(Load)->UseRealTime()->MinTime(2);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(
        argc, argv, {{"Load/min_time:2.000/real_time", "FloorLoad/min_time:2.000/real_time", 1.3}});
}
