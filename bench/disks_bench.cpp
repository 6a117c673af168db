// Maps of files beside the bare fetch of their extents, and identifiers of paths beside a look at
// the path, on a machine with 50 mounts. Needs root's rights, for a disk and mounts of its own.

#include "common/loopdisk.h"
#include "ratios.h"

#include <KxQts/disk/sectormap.h>
#include <KxQts/disk/volumeid.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/falloc.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr long long mebibyte = 1 << 20;
constexpr long long mediumSize = 1500 * mebibyte;
constexpr long long contiguousSize = 1024 * mebibyte;
constexpr long long fragmentedSize = 64 * mebibyte;
constexpr int mountCount = 50;

void require(bool succeeded, const char* what) {
    if (succeeded)
        return;
    std::perror(what);
    std::exit(1);
}

/// A file that is written wherever there is room, every other block being taken.
void makeFragmented(const std::string& path, const std::string& other) {
    const int taken = open(other.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    for (long long step = mebibyte; step >= 4096; step /= 2) {
        struct stat status {};
        while (fstat(taken, &status) == 0 && fallocate(taken, 0, status.st_size, step) == 0) {
        }
    }
    for (long long place = 0; place < 4 * fragmentedSize; place += 8192)
        fallocate(taken, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, place, 4096);
    fsync(taken);
    close(taken);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    const std::vector<char> block(mebibyte, 'x');
    for (long long done = 0; done < fragmentedSize; done += mebibyte)
        require(write(file, block.data(), block.size()) > 0, "writing");
    fsync(file);
    close(file);
}

/// The machine that is measured.
class Machine {
public:
    Machine() : disk(mediumSize) {
        require(disk.isAttached() && disk.addPartition(1, mebibyte, mediumSize - 2 * mebibyte),
                "attaching a disk");
        require(KxTest::makeFileSystem(disk.partitionPath(1), "Bench"), "making a file system");
        mounted.emplace(disk.partitionPath(1), folder + "/volume");
        require(mounted->isMounted(), "mounting");
        for (int i = 0; i < mountCount; ++i) {
            const std::string place = folder + "/memory" + std::to_string(i);
            mkdir(place.c_str(), 0700);
            require(mount("none", place.c_str(), "tmpfs", 0, "size=64k") == 0, "mounting");
        }
        const int file = open(contiguous().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        require(fallocate(file, 0, 0, contiguousSize) == 0, "setting space aside");
        close(file);
        makeFragmented(fragmented(), folder + "/volume/taken");
    }
    ~Machine() {
        for (int i = 0; i < mountCount; ++i)
            umount((folder + "/memory" + std::to_string(i)).c_str());
        mounted.reset();
        fs::remove_all(folder);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    [[nodiscard]] std::string contiguous() const { return folder + "/volume/contiguous"; }
    [[nodiscard]] std::string fragmented() const { return folder + "/volume/fragmented"; }

private:
    static std::string makeFolder() {
        std::string name = fs::temp_directory_path() / "kxqts-bench-XXXXXX";
        return mkdtemp(name.data());
    }

    const std::string folder = makeFolder();
    KxTest::LoopDisk disk;
    std::optional<KxTest::Mounted> mounted;
};

std::optional<Machine> machine;

/// Fetches all extents of a file, as bare as that can be done.
unsigned fetchExtents(const std::string& path) {
    constexpr unsigned atOnce = 2048;
    static std::vector<char> memory(sizeof(fiemap) + atOnce * sizeof(fiemap_extent));
    auto& query = *reinterpret_cast<fiemap*>(memory.data());
    const auto* extents = reinterpret_cast<const fiemap_extent*>(memory.data() + sizeof(fiemap));
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    unsigned count = 0;
    unsigned long long place = 0;
    do {
        std::fill_n(memory.begin(), sizeof(fiemap), 0);
        query.fm_start = place;
        query.fm_length = FIEMAP_MAX_OFFSET - place;
        query.fm_flags = FIEMAP_FLAG_SYNC;
        query.fm_extent_count = atOnce;
        require(ioctl(file, FS_IOC_FIEMAP, &query) == 0, "asking for extents");
        if (query.fm_mapped_extents == 0)
            break;
        count += query.fm_mapped_extents;
        const fiemap_extent& last = extents[query.fm_mapped_extents - 1];
        place = last.fe_logical + last.fe_length;
        if ((last.fe_flags & FIEMAP_EXTENT_LAST) != 0)
            break;
    } while (true);
    close(file);
    return count;
}

/// Asks for a map with room for all runs. \return Their number.
unsigned mapFile(const QString& path) {
    static std::vector<BLK_CHUNK> chunks(100'000);
    KX_DEV_VOL_UNION volume{};
    long long size = 0;
    auto count = static_cast<unsigned>(chunks.size());
    require(getFileSectorInfo(path, volume, size, count, chunks.data()) == 0, "mapping");
    return count;
}

void FloorContiguous(benchmark::State& state) {
    for (auto _ : state)
        state.counters["extents"] = fetchExtents(machine->contiguous());
}
BENCHMARK(FloorContiguous);

void MapContiguous(benchmark::State& state) {
    const QString path = QString::fromStdString(machine->contiguous());
    for (auto _ : state)
        state.counters["runs"] = mapFile(path);
}
BENCHMARK(MapContiguous);

void FloorFragmented(benchmark::State& state) {
    for (auto _ : state)
        state.counters["extents"] = fetchExtents(machine->fragmented());
}
BENCHMARK(FloorFragmented);

void MapFragmented(benchmark::State& state) {
    const QString path = QString::fromStdString(machine->fragmented());
    for (auto _ : state)
        state.counters["runs"] = mapFile(path);
}
BENCHMARK(MapFragmented);

void FloorPath(benchmark::State& state) {
    const std::string path = machine->contiguous();
    struct stat status {};
    for (auto _ : state)
        require(stat(path.c_str(), &status) == 0, "looking");
}
BENCHMARK(FloorPath);

void IdentifyPath(benchmark::State& state) {
    const QString path = QString::fromStdString(machine->contiguous());
    KX_DEV_VOL_UNION id{};
    for (auto _ : state)
        require(convertPathToPartialDvID(path, id) == 0, "identifying");
}
BENCHMARK(IdentifyPath);

void NameVolume(benchmark::State& state) {
    KX_DEV_VOL_UNION id{};
    QString name;
    convertPathToPartialDvID(QString::fromStdString(machine->contiguous()), id);
    for (auto _ : state)
        require(getVolumeNameFromDvID(id, name) == 0, "naming");
}
BENCHMARK(NameVolume);

/// Times that calls may take, as floors.
void Microseconds(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(static_cast<double>(state.range(0)) * 1e-6);
}
BENCHMARK(Microseconds)->Arg(20)->Arg(1000)->UseManualTime()->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (!KxTest::LoopDisk::isPossible()) {
        std::puts("skipped: this benchmark needs root's rights and loop devices");
        return 0;
    }
    require(unshare(CLONE_NEWNS) == 0, "leaving the namespace");
    require(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "leaving it");
    machine.emplace();
    const int result =
        KxBench::run(argc, argv,
                     {
                         {"MapContiguous", "Microseconds/1000/iterations:10/manual_time", 1.0},
                         {"MapFragmented", "FloorFragmented", 1.5},
                         {"IdentifyPath", "Microseconds/20/iterations:10/manual_time", 1.0},
                         {"IdentifyPath", "FloorPath", 20.0},
                     });
    machine.reset();
    return result;
}
