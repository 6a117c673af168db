// Threads beside the system's own.

#include "ratios.h"

#include <KxQts/windows.h>

#include <pthread.h>
#include <semaphore.h>

namespace {

sem_t ended;

DWORD routine(LPVOID) {
    sem_post(&ended);
    return 0;
}

void* floorRoutine(void*) {
    return nullptr;
}

void FloorCreateAndJoin(benchmark::State& state) {
    for (auto _ : state) {
        pthread_t thread{};
        pthread_create(&thread, nullptr, floorRoutine, nullptr);
        pthread_join(thread, nullptr);
    }
}
BENCHMARK(FloorCreateAndJoin)->UseRealTime();

/// Closed while it may still run: the thread frees itself.
void CreateCloseAndEnd(benchmark::State& state) {
    for (auto _ : state) {
        HANDLE thread = CreateThread(nullptr, 0, routine, nullptr, 0, nullptr);
        CloseHandle(thread);
        sem_wait(&ended);
    }
}
BENCHMARK(CreateCloseAndEnd)->UseRealTime();

/// Closed when its routine is over.
void CreateEndAndClose(benchmark::State& state) {
    for (auto _ : state) {
        HANDLE thread = CreateThread(nullptr, 0, routine, nullptr, 0, nullptr);
        sem_wait(&ended);
        CloseHandle(thread);
    }
}
BENCHMARK(CreateEndAndClose)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    sem_init(&ended, 0, 0);
    return KxBench::run(argc, argv,
                        {
                            {"CreateCloseAndEnd/real_time", "FloorCreateAndJoin/real_time", 2.2},
                            {"CreateEndAndClose/real_time", "FloorCreateAndJoin/real_time", 2.2},
                        });
}
