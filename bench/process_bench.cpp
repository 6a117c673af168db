// Starting a program and waiting for its end, beside the system's own calls.

#include "ratios.h"

#include <KxQts/system/process.h>
#include <KxQts/windows.h>

#include <array>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void FloorStartAndWait(benchmark::State& state) {
    char name[] = "/bin/true";
    const std::array<char*, 2> arguments{name, nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        posix_spawn(&process, name, nullptr, nullptr, arguments.data(), environ);
        int status = 0;
        waitpid(process, &status, 0);
    }
}
BENCHMARK(FloorStartAndWait)->UseRealTime();

PROCESS_INFORMATION start() {
    char command[] = "/bin/true";
    STARTUPINFOA startupInfo{};
    PROCESS_INFORMATION information{};
    CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startupInfo,
                   &information);
    return information;
}

void StartAndWait(benchmark::State& state) {
    for (auto _ : state) {
        HANDLE process = start().hProcess;
        WProcess::wait(static_cast<WProcess*>(process), INFINITE);
        CloseHandle(process);
    }
}
BENCHMARK(StartAndWait)->UseRealTime();

/// The process is left to the library, which has to collect it.
void StartAndClose(benchmark::State& state) {
    for (auto _ : state)
        CloseHandle(start().hProcess);
}
BENCHMARK(StartAndClose)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"StartAndWait/real_time", "FloorStartAndWait/real_time", 1.2},
                            {"StartAndClose/real_time", "FloorStartAndWait/real_time", 1.5},
                        });
}
