// File handles beside the system calls that they stand on.

#include "ratios.h"

#include <KxQts/windows.h>

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t fileSize = std::size_t{64} << 20;

/// A file in memory where there is such a place, so that no disk is measured.
class Scratch {
public:
    Scratch() {
        const int descriptor = mkstemp(name.data());
        const std::vector<char> block(1 << 20, 'x');
        for (std::size_t written = 0; written < fileSize; written += block.size())
            if (write(descriptor, block.data(), block.size()) < 0)
                std::abort();
        close(descriptor);
    }
    ~Scratch() { unlink(name.c_str()); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string name = "/dev/shm/kxqts-bench-XXXXXX";
};

const char* scratchName() {
    static const Scratch scratch;
    return scratch.name.c_str();
}

HANDLE openScratch(DWORD access) {
    return CreateFileA(scratchName(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

void rewind(HANDLE file) {
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
}

void FloorRead(benchmark::State& state) {
    const int file = open(scratchName(), O_RDONLY);
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        if (read(file, buffer.data(), buffer.size()) <= 0)
            lseek(file, 0, SEEK_SET);
    close(file);
}
BENCHMARK(FloorRead)->Arg(64)->Arg(65536)->Arg(1 << 20);

void Read(benchmark::State& state) {
    HANDLE file = openScratch(GENERIC_READ);
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    DWORD done = 0;
    for (auto _ : state)
        if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &done, nullptr) ||
            done == 0)
            rewind(file);
    CloseHandle(file);
}
BENCHMARK(Read)->Arg(64)->Arg(65536)->Arg(1 << 20);

void FloorWrite(benchmark::State& state) {
    const int file = open(scratchName(), O_WRONLY);
    const std::vector<char> buffer(static_cast<std::size_t>(state.range(0)), 'y');
    std::size_t written = 0;
    for (auto _ : state) {
        if (write(file, buffer.data(), buffer.size()) <= 0)
            std::abort();
        if ((written += buffer.size()) >= fileSize) {
            written = 0;
            lseek(file, 0, SEEK_SET);
        }
    }
    close(file);
}
BENCHMARK(FloorWrite)->Arg(64)->Arg(65536)->Arg(1 << 20);

void Write(benchmark::State& state) {
    HANDLE file = openScratch(GENERIC_WRITE);
    const std::vector<char> buffer(static_cast<std::size_t>(state.range(0)), 'y');
    std::size_t written = 0;
    for (auto _ : state) {
        if (!WriteFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, nullptr))
            std::abort();
        if ((written += buffer.size()) >= fileSize) {
            written = 0;
            rewind(file);
        }
    }
    CloseHandle(file);
}
BENCHMARK(Write)->Arg(64)->Arg(65536)->Arg(1 << 20);

void FloorOpenClose(benchmark::State& state) {
    for (auto _ : state)
        close(open(scratchName(), O_RDONLY));
}
BENCHMARK(FloorOpenClose);

void OpenClose(benchmark::State& state) {
    for (auto _ : state)
        CloseHandle(openScratch(GENERIC_READ));
}
BENCHMARK(OpenClose);

constexpr std::size_t pageSize = 4096;

std::vector<std::int64_t> randomPages() {
    std::mt19937 generator(1); // NOLINT(cert-msc51-cpp): the same pages in every run
    std::uniform_int_distribution<std::int64_t> page(0, fileSize / pageSize - 1);
    std::vector<std::int64_t> pages(4096);
    for (std::int64_t& place : pages)
        place = page(generator) * static_cast<std::int64_t>(pageSize);
    return pages;
}

void FloorRandomRead(benchmark::State& state) {
    const int file = open(scratchName(), O_RDONLY);
    const std::vector<std::int64_t> pages = randomPages();
    std::vector<char> buffer(pageSize);
    std::size_t next = 0;
    for (auto _ : state) {
        lseek(file, static_cast<off_t>(pages[next++ % pages.size()]), SEEK_SET);
        if (read(file, buffer.data(), buffer.size()) < 0)
            std::abort();
    }
    close(file);
}
BENCHMARK(FloorRandomRead);

void RandomRead(benchmark::State& state) {
    HANDLE file = openScratch(GENERIC_READ);
    const std::vector<std::int64_t> pages = randomPages();
    std::vector<char> buffer(pageSize);
    std::size_t next = 0;
    DWORD done = 0;
    for (auto _ : state) {
        LARGE_INTEGER place;
        place.QuadPart = pages[next++ % pages.size()];
        SetFilePointerEx(file, place, nullptr, FILE_BEGIN);
        ReadFile(file, buffer.data(), pageSize, &done, nullptr);
    }
    CloseHandle(file);
}
BENCHMARK(RandomRead);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"Read/64", "FloorRead/64", 0.25},
                            {"Read/65536", "FloorRead/65536", 1.1},
                            {"Read/1048576", "FloorRead/1048576", 1.1},
                            {"Write/64", "FloorWrite/64", 0.25},
                            {"Write/65536", "FloorWrite/65536", 1.1},
                            {"Write/1048576", "FloorWrite/1048576", 1.1},
                            {"OpenClose", "FloorOpenClose", 2.5},
                            {"RandomRead", "FloorRandomRead", 2.5},
                        });
}
