// Where files really lie: what the map says is read from the device and compared.

#include <KxQts/disk/sectormap.h>

#include "realdisk.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/falloc.h>
#include <linux/fs.h>
#include <random>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

using KxTest::idOf;
using KxTest::Mounted;

namespace {

constexpr long long mediaBlock = 512;

struct Map {
    int result = -99;
    long long size = -1;
    KX_DEV_VOL_UNION volume{};
    std::vector<BLK_CHUNK> runs;
};

Map mapOf(const std::string& path) {
    Map map;
    unsigned count = 0;
    const QString name = QString::fromStdString(path);
    map.result = getFileSectorInfo(name, map.volume, map.size, count, nullptr);
    if (map.result != 0)
        return map;
    map.runs.resize(count);
    map.result = getFileSectorInfo(name, map.volume, map.size, count, map.runs.data());
    EXPECT_EQ(count, map.runs.size());
    return map;
}

/// A file of bytes that nobody else has written.
class Writer {
public:
    explicit Writer(const std::string& path)
        : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)) {}
    ~Writer() { close(descriptor); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void write(long long place, std::size_t length) {
        std::string bytes(length, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        EXPECT_EQ(pwrite(descriptor, bytes.data(), length, place), static_cast<ssize_t>(length));
        const auto end = static_cast<std::size_t>(place) + length;
        contents.resize(std::max(contents.size(), end));
        contents.replace(static_cast<std::size_t>(place), length, bytes);
    }
    [[nodiscard]] int get() const { return descriptor; }
    [[nodiscard]] const std::string& written() const { return contents; }

private:
    int descriptor;
    std::mt19937 random{3}; // NOLINT(cert-msc51-cpp): the same in every run
    std::string contents;
};

/// What lies in the runs of a map on a device, cut to the length of the file.
std::string readRuns(const std::string& device, const Map& map) {
    const int descriptor = open(device.c_str(), O_RDONLY | O_CLOEXEC);
    std::string bytes;
    for (const BLK_CHUNK& run : map.runs) {
        std::string part(static_cast<std::size_t>(run.blockCount * mediaBlock), '\0');
        EXPECT_EQ(pread(descriptor, part.data(), part.size(), run.startBlock * mediaBlock),
                  static_cast<ssize_t>(part.size()));
        bytes += part;
    }
    close(descriptor);
    bytes.resize(static_cast<std::size_t>(map.size));
    return bytes;
}

/// The runs by asking the file system for one of its blocks after the other.
std::vector<BLK_CHUNK> runsByBlocks(int file, long long size) {
    int blockSize = 0;
    EXPECT_EQ(ioctl(file, FIGETBSZ, &blockSize), 0);
    std::vector<BLK_CHUNK> runs;
    for (long long place = 0; place < size; place += mediaBlock) {
        int block = static_cast<int>(place / blockSize);
        EXPECT_EQ(ioctl(file, FIBMAP, &block), 0);
        const long long at =
            (static_cast<long long>(block) * blockSize + place % blockSize) / mediaBlock;
        if (!runs.empty() && runs.back().startBlock + runs.back().blockCount == at)
            ++runs.back().blockCount;
        else
            runs.push_back({at, 1});
    }
    return runs;
}

/// Whether two maps have the same runs.
bool same(const std::vector<BLK_CHUNK>& one, const std::vector<BLK_CHUNK>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const BLK_CHUNK& a, const BLK_CHUNK& b) {
                          return a.startBlock == b.startBlock && a.blockCount == b.blockCount;
                      });
}

class RealMap : public KxTest::RealDisk {
protected:
    void SetUp() override {
        RealDisk::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        mounted.emplace(slice.path, here("place"));
        ASSERT_TRUE(mounted->isMounted());
    }
    [[nodiscard]] std::string file() const { return mounted->folder() + "/file"; }

    std::optional<Mounted> mounted;
};

} // namespace

TEST_F(RealMap, LeadsToTheBytesOfAFileThatWasJustWritten) {
    Writer writer(file());
    writer.write(0, 1000001);
    const Map map = mapOf(file());
    ASSERT_EQ(map.result, 0);
    EXPECT_EQ(map.size, 1000001);
    EXPECT_EQ(map.volume.value, idOf(slice).value);
    EXPECT_TRUE(readRuns(slice.path, map) == writer.written());
    long long blocks = 0;
    for (const BLK_CHUNK& run : map.runs)
        blocks += run.blockCount;
    EXPECT_EQ(blocks, (1000001 + mediaBlock - 1) / mediaBlock);
    EXPECT_TRUE(same(map.runs, runsByBlocks(writer.get(), map.size)));
}

TEST_F(RealMap, OfAFragmentedFileIsThatOfAskingBlockByBlock) {
    Writer writer(file());
    const Writer other(mounted->folder() + "/other");
    // All space is taken, and every other block of it is given back for the file.
    long long filled = 0;
    while (fallocate(other.get(), 0, filled, 65536) == 0)
        filled += 65536;
    for (long long place = 0; place < filled; place += 8192)
        fallocate(other.get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, place, 4096);
    fsync(other.get());
    writer.write(0, 500000);
    const Map map = mapOf(file());
    ASSERT_EQ(map.result, 0);
    EXPECT_GT(map.runs.size(), 20u);
    EXPECT_TRUE(same(map.runs, runsByBlocks(writer.get(), map.size)));
    EXPECT_TRUE(readRuns(slice.path, map) == writer.written());
}

TEST_F(RealMap, HasNoHoles) {
    Writer writer(file());
    writer.write(64 * 1024, 4096);
    EXPECT_EQ(mapOf(file()).result, -1) << "at the beginning";
    writer.write(0, 4096);
    EXPECT_EQ(mapOf(file()).result, -1) << "in the middle";
    writer.write(0, 64 * 1024);
    EXPECT_EQ(mapOf(file()).result, 0);
    ASSERT_EQ(ftruncate(writer.get(), 1 << 20), 0);
    EXPECT_EQ(mapOf(file()).result, -1) << "at the end";
}

TEST_F(RealMap, CountsSpaceThatWasSetAside) {
    Writer writer(file());
    ASSERT_EQ(fallocate(writer.get(), 0, 0, 1 << 20), 0);
    const Map before = mapOf(file());
    ASSERT_EQ(before.result, 0);
    writer.write(0, 1 << 20);
    const Map after = mapOf(file());
    EXPECT_TRUE(same(before.runs, after.runs)) << "what is written goes there";
    EXPECT_TRUE(readRuns(slice.path, before) == writer.written());
}

TEST_F(RealMap, StopsAtTheLengthWhereMoreIsSetAside) {
    Writer writer(file());
    writer.write(0, 5000);
    ASSERT_EQ(fallocate(writer.get(), FALLOC_FL_KEEP_SIZE, 0, 1 << 20), 0);
    const Map map = mapOf(file());
    ASSERT_EQ(map.runs.size(), 1u);
    EXPECT_EQ(map.runs[0].blockCount, 10);
}

TEST_F(RealMap, OfAnEmptyFileIsOneBlock) {
    const Writer writer(file());
    const Map map = mapOf(file());
    EXPECT_EQ(map.result, 0);
    ASSERT_EQ(map.runs.size(), 1u);
    EXPECT_EQ(map.runs[0].startBlock, 0);
    EXPECT_EQ(map.runs[0].blockCount, 1);
}

TEST_F(RealMap, FollowsLinks) {
    Writer writer(file());
    writer.write(0, 5000);
    fs::create_symlink(file(), here("link"));
    EXPECT_TRUE(same(mapOf(file()).runs, runsByBlocks(writer.get(), 5000)));
    const Map map = mapOf(here("link"));
    EXPECT_TRUE(same(map.runs, mapOf(file()).runs));
    fs::remove(here("link"));
}

TEST_F(RealMap, IsNoneForFoldersAndForFilesThatAreNotThere) {
    EXPECT_EQ(mapOf(mounted->folder()).result, -1);
    EXPECT_EQ(mapOf(file()).result, ENOENT);
}

TEST_F(RealMap, IsNoneForDataThatLiesInItsNode) {
    mounted.reset();
    ASSERT_TRUE(KxTest::makeFileSystem(slice.path, "", "-I 256 -O inline_data"));
    mounted.emplace(slice.path, here("place"));
    ASSERT_TRUE(mounted->isMounted());
    Writer writer(file());
    writer.write(0, 40);
    fsync(writer.get());
    EXPECT_EQ(mapOf(file()).result, -1);
    writer.write(0, 5000);
    EXPECT_EQ(mapOf(file()).result, 0);
}

TEST(MapElsewhere, IsNoneOnFileSystemsInMemory) {
    std::ofstream("/dev/shm/kxqts-map") << "contents";
    EXPECT_EQ(mapOf("/dev/shm/kxqts-map").result, 87);
    fs::remove("/dev/shm/kxqts-map");
}
