// Mutexes beside the semaphores that they are made of.

#include "ratios.h"

#include <KxQts/windows.h>

#include <fcntl.h>
#include <semaphore.h>
#include <string>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>
#include <vector>

namespace {

/// A name of this process's own, removed with the object.
class Name {
public:
    Name() : text("/kxqts-bench-" + std::to_string(getpid())) {}
    ~Name() { remove(); }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

    void remove() const { sem_unlink(text.c_str()); }
    [[nodiscard]] const char* get() const { return text.c_str(); }

private:
    std::string text;
};

void FloorNamedWaitAndRelease(benchmark::State& state) {
    const Name name;
    sem_t* semaphore = sem_open(name.get(), O_CREAT | O_EXCL, 0600, 1);
    for (auto _ : state) {
        sem_wait(semaphore);
        sem_post(semaphore);
    }
    sem_close(semaphore);
}
BENCHMARK(FloorNamedWaitAndRelease);

void NamedWaitAndRelease(benchmark::State& state) {
    const Name name;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, name.get());
    for (auto _ : state) {
        WaitForSingleObject(mutex, INFINITE);
        ReleaseMutex(mutex);
    }
    CloseHandle(mutex);
}
BENCHMARK(NamedWaitAndRelease);

void change(int set, short by) {
    sembuf operation{0, by, SEM_UNDO};
    semop(set, &operation, 1);
}

void FloorUnnamedWaitAndRelease(benchmark::State& state) {
    const int set = semget(IPC_PRIVATE, 1, IPC_CREAT | 0600);
    change(set, 1);
    for (auto _ : state) {
        change(set, -1);
        change(set, 1);
    }
    semctl(set, 0, IPC_RMID);
}
BENCHMARK(FloorUnnamedWaitAndRelease);

void UnnamedWaitAndRelease(benchmark::State& state) {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    for (auto _ : state) {
        WaitForSingleObject(mutex, INFINITE);
        ReleaseMutex(mutex);
    }
    CloseHandle(mutex);
}
BENCHMARK(UnnamedWaitAndRelease);

/// The same with many sets alive, which slow the kernel down.
class ManySets {
public:
    ManySets() {
        while (sets.size() < count)
            sets.push_back(semget(IPC_PRIVATE, 1, IPC_CREAT | 0600));
    }
    ~ManySets() {
        for (int set : sets)
            semctl(set, 0, IPC_RMID);
    }
    ManySets(const ManySets&) = delete;
    ManySets& operator=(const ManySets&) = delete;

private:
    static constexpr std::size_t count = 1000;
    std::vector<int> sets;
};

void FloorUnnamedAmongMany(benchmark::State& state) {
    const ManySets many;
    FloorUnnamedWaitAndRelease(state);
}
BENCHMARK(FloorUnnamedAmongMany);

void UnnamedAmongMany(benchmark::State& state) {
    const ManySets many;
    UnnamedWaitAndRelease(state);
}
BENCHMARK(UnnamedAmongMany);

void FloorNamedOpenAndClose(benchmark::State& state) {
    const Name name;
    sem_t* keptOpen = sem_open(name.get(), O_CREAT | O_EXCL, 0600, 1);
    sem_close(keptOpen);
    for (auto _ : state)
        sem_close(sem_open(name.get(), O_CREAT, 0600, 1));
}
BENCHMARK(FloorNamedOpenAndClose);

void NamedOpenAndClose(benchmark::State& state) {
    const Name name;
    sem_close(sem_open(name.get(), O_CREAT | O_EXCL, 0600, 1));
    for (auto _ : state)
        CloseHandle(CreateMutexA(nullptr, FALSE, name.get()));
}
BENCHMARK(NamedOpenAndClose);

void FloorNamedCreateAndClose(benchmark::State& state) {
    const Name name;
    for (auto _ : state) {
        sem_close(sem_open(name.get(), O_CREAT | O_EXCL, 0600, 1));
        name.remove();
    }
}
BENCHMARK(FloorNamedCreateAndClose);

void NamedCreateAndClose(benchmark::State& state) {
    const Name name;
    for (auto _ : state) {
        CloseHandle(CreateMutexA(nullptr, FALSE, name.get()));
        name.remove();
    }
}
BENCHMARK(NamedCreateAndClose);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"NamedWaitAndRelease", "FloorNamedWaitAndRelease", 3},
                            {"UnnamedWaitAndRelease", "FloorUnnamedWaitAndRelease", 1.5},
                            {"UnnamedAmongMany", "FloorUnnamedAmongMany", 1.5},
                            {"NamedCreateAndClose", "FloorNamedCreateAndClose", 2.5},
                            {"NamedOpenAndClose", "FloorNamedOpenAndClose", 2.5},
                        });
}
