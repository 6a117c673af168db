// Searching a folder and copying a file, beside what the system itself needs for the same.
// A search may cost three times its floor (most of it is the sorting of the directory listing), a
// copy 1.2 times.

#include "ratios.h"

#include <KxQts/winapi/filesystem.h>
#include <KxQts/winapi/find.h>

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int entryCount = 100'000;
constexpr std::size_t mebibyte = 1024 * 1024;
constexpr std::size_t fileSize = 256 * mebibyte;

/// An empty folder that is the current one while it lives.
class CurrentFolder {
public:
    CurrentFolder() : before(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "kxqts-bench-XXXXXX").string();
        path = mkdtemp(name.data());
        fs::current_path(path);
    }
    ~CurrentFolder() {
        fs::current_path(before);
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    const fs::path before;
    fs::path path;
};

void makeEntries() {
    for (int i = 0; i < entryCount; ++i) {
        // Neither in order nor all in one case, as real folders are.
        const unsigned mixed = static_cast<unsigned>(i) * 2654435761u;
        std::ofstream((i % 2 == 0 ? "file-" : "File-") + std::to_string(mixed) + ".txt");
    }
}

void listSortStat() {
    std::vector<std::string> names;
    DIR* folder = opendir(".");
    while (const dirent* entry = readdir(folder))
        names.emplace_back(entry->d_name);
    closedir(folder);
    std::sort(names.begin(), names.end());
    struct stat found {};
    for (const std::string& name : names)
        benchmark::DoNotOptimize(stat(name.c_str(), &found));
}

int search() {
    HANDLE handle = FindFirstFileA("*", nullptr);
    int count = 1;
    while (FindNextFile(handle, nullptr))
        ++count;
    FindClose(handle);
    return count;
}

void FloorSearch(benchmark::State& state) {
    const CurrentFolder folder;
    makeEntries();
    for (auto _ : state)
        listSortStat();
}

void Search(benchmark::State& state) {
    const CurrentFolder folder;
    makeEntries();
    for (auto _ : state)
        if (search() != entryCount + 2) // the folder itself and its parent
            state.SkipWithError("entries are missing");
}

void makeLargeFile() {
    std::vector<char> block(mebibyte);
    std::minstd_rand random;
    std::ofstream file("source", std::ios::binary);
    for (std::size_t written = 0; written < fileSize; written += block.size()) {
        for (char& byte : block)
            byte = static_cast<char>(random());
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    file.close();
    sync();
}

void copyRangeAndSync() {
    const int source = open("source", O_RDONLY);
    const int target = open("target", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::size_t left = fileSize;
    while (left > 0) {
        const ssize_t copied = copy_file_range(source, nullptr, target, nullptr, left, 0);
        if (copied <= 0)
            break;
        left -= static_cast<std::size_t>(copied);
    }
    fdatasync(target);
    close(source);
    close(target);
}

/// Measures with the target missing, or there, before each copy.
template <class CopyOnce>
void measureCopy(benchmark::State& state, CopyOnce copyOnce) {
    const CurrentFolder folder;
    makeLargeFile();
    for (auto _ : state) {
        copyOnce();
        state.PauseTiming();
        if (!fs::exists("target") || fs::file_size("target") != fileSize)
            state.SkipWithError("not copied");
        fs::remove("target");
        if (state.range(0) != 0)
            std::ofstream("target") << "old";
        state.ResumeTiming();
    }
}

void FloorCopy(benchmark::State& state) {
    measureCopy(state, copyRangeAndSync);
}

void Copy(benchmark::State& state) {
    measureCopy(state, [] { CopyFileA("source", "target", FALSE); });
}

constexpr auto unit = benchmark::kMillisecond;
BENCHMARK(FloorSearch)->Unit(unit)->Iterations(1)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(Search)->Unit(unit)->Iterations(1)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(FloorCopy)->Arg(0)->Arg(1)->Unit(unit)->Iterations(1)->Repetitions(7);
BENCHMARK(Copy)->Arg(0)->Arg(1)->Unit(unit)->Iterations(1)->Repetitions(7);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(
        argc, argv,
        {{"Search/iterations:1/repeats:7", "FloorSearch/iterations:1/repeats:7", 3},
         {"Copy/0/iterations:1/repeats:7", "FloorCopy/0/iterations:1/repeats:7", 1.2},
         {"Copy/1/iterations:1/repeats:7", "FloorCopy/1/iterations:1/repeats:7", 1.2}});
}
