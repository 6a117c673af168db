// Searching a folder and copying a file, beside what the system itself needs for the same.
// A search may cost three times its floor; most of what it costs is the sorting inside Qt's
// listing. A copy may cost 1.2 times its floor.

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
constexpr std::size_t fileSize = 64 * mebibyte;

/// An empty folder that is gone when the program ends.
class Folder {
public:
    explicit Folder(const fs::path& parent) {
        std::string name = (parent / "kxqts-bench-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~Folder() {
        std::error_code ignored;
        fs::current_path("/", ignored);
        fs::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path path;
};

void makeEntries(const fs::path& folder) {
    for (int i = 0; i < entryCount; ++i) {
        // Neither in order nor all in one case, as real folders are.
        const unsigned mixed = static_cast<unsigned>(i) * 2654435761u;
        std::ofstream(folder / ((i % 2 == 0 ? "file-" : "File-") + std::to_string(mixed) + ".txt"));
    }
}

/// Makes a folder with many files the current one, in memory, so that no disk is measured.
void enterLargeFolder() {
    static const Folder folder("/dev/shm");
    [[maybe_unused]] static const bool made = (makeEntries(folder.path), true);
    fs::current_path(folder.path);
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
    enterLargeFolder();
    for (auto _ : state)
        listSortStat();
}

void Search(benchmark::State& state) {
    enterLargeFolder();
    for (auto _ : state)
        if (search() != entryCount + 2) // the folder itself and its parent
            std::abort();               // entries are missing
}

void makeLargeFile(const fs::path& folder) {
    std::vector<char> block(mebibyte);
    std::minstd_rand random;
    std::ofstream file(folder / "source", std::ios::binary);
    for (std::size_t written = 0; written < fileSize; written += block.size()) {
        for (char& byte : block)
            byte = static_cast<char>(random());
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    file.close();
    sync();
}

/// Makes a folder with a large file the current one, on a disk.
void enterFolderWithLargeFile() {
    static const Folder folder(fs::temp_directory_path());
    [[maybe_unused]] static const bool made = (makeLargeFile(folder.path), true);
    fs::current_path(folder.path);
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
    enterFolderWithLargeFile();
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove("target");
        if (state.range(0) != 0)
            std::ofstream("target") << "old";
        state.ResumeTiming();
        copyOnce();
    }
    if (fs::file_size("target") != fileSize)
        std::abort(); // not copied
}

void FloorCopy(benchmark::State& state) {
    measureCopy(state, copyRangeAndSync);
}

void Copy(benchmark::State& state) {
    measureCopy(state, [] { CopyFileA("source", "target", FALSE); });
}

constexpr auto unit = benchmark::kMillisecond;
BENCHMARK(FloorSearch)->Unit(unit)->Iterations(1)->Repetitions(9);
BENCHMARK(Search)->Unit(unit)->Iterations(1)->Repetitions(9);
BENCHMARK(FloorCopy)->Arg(0)->Arg(1)->Unit(unit)->Iterations(1)->Repetitions(9);
BENCHMARK(Copy)->Arg(0)->Arg(1)->Unit(unit)->Iterations(1)->Repetitions(9);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(
        argc, argv,
        {{"Search/iterations:1/repeats:9", "FloorSearch/iterations:1/repeats:9", 3},
         {"Copy/0/iterations:1/repeats:9", "FloorCopy/0/iterations:1/repeats:9", 1.2},
         {"Copy/1/iterations:1/repeats:9", "FloorCopy/1/iterations:1/repeats:9", 1.2}});
}
