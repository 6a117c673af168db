// Runs of blocks, whatever the file system says about its extents.

#include <KxQts/disk/sectormap.h>

#include "fakes/diskarbiter.h"
#include "fakes/extentmap.h"
#include "fakes/volumetable.h"
#include "platform/descriptor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

using Korvex::Extent;
using KxTest::FakeArbiter;

namespace {

using Runs = std::vector<std::pair<long long, long long>>;

struct Map {
    int result = -99;
    unsigned count = 99;
    Runs runs;
};

/// What becomes of seeking to the end, which some file systems allow in a folder. \return An errno.
int measuring(const std::string& file) {
    const Korvex::Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    return lseek(opened.get(), 0, SEEK_END) < 0 ? errno : 0;
}

class SectorMap : public testing::Test {
protected:
    SectorMap() {
        description = arbiter.addDisk("disk1s2");
        setBlockSize(512);
        table.places[file] = {0, KxTest::onDevice("disk1s2")};
        resize(0);
    }
    ~SectorMap() override {
        fs::remove_all(file);
        EXPECT_EQ(arbiter.liveObjects(), 0);
    }

    void setBlockSize(long long bytes) { FakeArbiter::set(description, "DAMediaBlockSize", bytes); }
    void resize(unsigned long long bytes) const {
        std::ofstream(file).close();
        fs::resize_file(file, bytes);
    }

    int ask(unsigned& count, BLK_CHUNK* chunks) {
        return getFileSectorInfo(QString::fromStdString(file), volume, size, count, chunks);
    }

    /// Asks for the count, and then for the runs.
    Map map() {
        Map made;
        made.count = 0;
        made.result = ask(made.count, nullptr);
        if (made.result != 0)
            return made;
        std::vector<BLK_CHUNK> chunks(made.count + 1, BLK_CHUNK{-7, -7});
        unsigned count = made.count;
        made.result = ask(count, chunks.data());
        EXPECT_EQ(count, made.count);
        EXPECT_EQ(chunks[count].startBlock, -7) << "nothing is written behind";
        for (unsigned i = 0; i < count; ++i)
            made.runs.emplace_back(chunks[i].startBlock, chunks[i].blockCount);
        return made;
    }

    const std::string file = fs::current_path() / "file";
    FakeArbiter arbiter;
    CFMutableDictionaryRef description = nullptr;
    KxTest::FakeVolumeTable table;
    KxTest::FakeExtentMap extents;
    KX_DEV_VOL_UNION volume{};
    long long size = -1;
};

/// The runs by asking for one block after the other; nothing where a block lies nowhere.
std::optional<Runs> blockByBlock(const std::vector<Extent>& extents, unsigned long long length,
                                 unsigned long long blockSize) {
    const auto translate = [&](unsigned long long position) -> std::optional<long long> {
        for (const Extent& extent : extents) {
            if (position >= extent.logical && position < extent.logical + extent.length)
                return static_cast<long long>((extent.physical + position - extent.logical) /
                                              blockSize);
        }
        return std::nullopt;
    };
    Runs runs;
    long long previous = 0;
    for (unsigned long long position = 0; position < length; position += blockSize) {
        const auto block = translate(position);
        if (!block)
            return std::nullopt;
        if (!runs.empty() && *block - previous == 1)
            ++runs.back().second;
        else
            runs.emplace_back(*block, 1);
        previous = *block;
    }
    return runs;
}

} // namespace

TEST_F(SectorMap, OfAnEmptyFileIsOneBlockAtTheBeginning) {
    const Map made = map();
    EXPECT_EQ(made.result, 0);
    EXPECT_EQ(made.runs, (Runs{{0, 1}}));
    EXPECT_EQ(size, 0);
    EXPECT_EQ(volume.value, 0x0201u);
}

TEST_F(SectorMap, OfOneBlockIsOneRun) {
    extents.extents = {{0, 4096, 4096}};
    for (const unsigned length : {1U, 511U, 512U}) {
        resize(length);
        EXPECT_EQ(map().runs, (Runs{{8, 1}})) << length;
        EXPECT_EQ(size, length);
    }
    resize(513);
    EXPECT_EQ(map().runs, (Runs{{8, 2}}));
}

TEST_F(SectorMap, OfConsecutiveBlocksIsOneRunWhateverTheExtents) {
    resize(12000);
    extents.extents = {{0, 8192, 4096}, {4096, 12288, 4096}, {8192, 16384, 8192}};
    EXPECT_EQ(map().runs, (Runs{{16, 24}})) << "rounded up, and no further than the file";
}

TEST_F(SectorMap, BeginsARunAtEveryGapAndStepBack) {
    resize(4 * 4096);
    extents.extents = {{0, 40960, 4096}, {4096, 4096, 4096}, {8192, 12288, 8192}};
    EXPECT_EQ(map().runs, (Runs{{80, 8}, {8, 8}, {24, 16}}));
    extents.extents = {{0, 4096, 4096}, {4096, 4096, 12288}};
    EXPECT_EQ(map().runs, (Runs{{8, 8}, {8, 24}})) << "the same block again";
}

TEST_F(SectorMap, OfAHoleIsNone) {
    resize(3 * 4096);
    const auto none = [&](std::vector<Extent> made) {
        extents.extents = std::move(made);
        unsigned count = 0;
        size = -1;
        return ask(count, nullptr) == -1 && count == 0 && size == -1;
    };
    EXPECT_TRUE(none({{0, 4096, 4096}, {8192, 8192, 4096}})) << "in the middle";
    EXPECT_TRUE(none({{4096, 8192, 8192}})) << "at the beginning";
    EXPECT_TRUE(none({{0, 8192, 8192}})) << "at the end";
    EXPECT_TRUE(none({}));
    extents.extents = std::nullopt;
    unsigned count = 0;
    EXPECT_EQ(ask(count, nullptr), -1) << "no map";
}

TEST_F(SectorMap, IsThatOfAskingBlockByBlock) {
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same in every run
    int withRuns = 0;
    for (int turn = 0; turn < 300; ++turn) {
        const unsigned long long blockSize = 512U << random() % 4;
        std::vector<Extent> made;
        unsigned long long logical = 0;
        unsigned long long physical = 1 << 20;
        while (logical < 60000) {
            const unsigned long long length = 1024 * (1 + random() % 8);
            if (random() % 3 == 0)
                physical = 1024 * (random() % 5000);
            if (random() % 40 != 0)
                made.push_back({logical, physical, length});
            logical += length;
            physical += length;
        }
        const unsigned long long length = random() % 60000;
        resize(length);
        setBlockSize(static_cast<long long>(blockSize));
        extents.extents = made;
        const auto expected = blockByBlock(made, length, blockSize);
        const Map got = map();
        if (length == 0)
            continue;
        ASSERT_EQ(got.result, expected ? 0 : -1) << turn;
        if (expected) {
            ASSERT_EQ(got.runs, *expected) << turn;
            ++withRuns;
        }
    }
    EXPECT_GT(withRuns, 50);
}

TEST_F(SectorMap, IsFetchedOnceForBothPasses) {
    resize(4096);
    extents.extents = {{0, 4096, 4096}};
    BLK_CHUNK chunk{};
    unsigned count = 1;
    EXPECT_EQ(ask(count, &chunk), 0);
    EXPECT_EQ(extents.fetches, 1);
}

TEST_F(SectorMap, SaysHowMuchRoomItNeeds) {
    resize(3 * 4096);
    extents.extents = {{0, 0, 4096}, {4096, 8192, 4096}, {8192, 16384, 4096}};
    unsigned count = 0;
    EXPECT_EQ(ask(count, nullptr), 0);
    EXPECT_EQ(count, 3u);
    std::array<BLK_CHUNK, 4> chunks{};
    chunks.fill({-7, -7});
    count = 2;
    EXPECT_EQ(ask(count, chunks.data()), 22);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(chunks[0].startBlock, -7) << "nothing is written";
    EXPECT_EQ(size, 3 * 4096);
    count = 2;
    EXPECT_EQ(ask(count, nullptr), 22);
    EXPECT_EQ(count, 3u);
    count = 3;
    EXPECT_EQ(ask(count, nullptr), 22) << "nowhere to write to";
    count = 4;
    EXPECT_EQ(ask(count, chunks.data()), 0);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(chunks[3].startBlock, -7);
    count = 0;
    EXPECT_EQ(ask(count, chunks.data()), 0) << "a question too";
}

TEST_F(SectorMap, FailsWithoutAVolumeDiskOrBlockSize) {
    unsigned count = 0;
    table.places[file] = {0, {0, true, ""}};
    EXPECT_EQ(ask(count, nullptr), 87);
    table.places.clear();
    EXPECT_EQ(ask(count, nullptr), 2);
    table.places[file] = {-43, {}};
    EXPECT_EQ(ask(count, nullptr), -43);
    table.places[file] = {0, KxTest::onDevice("disk3")};
    EXPECT_EQ(ask(count, nullptr), 19);
    EXPECT_EQ(volume.value, 3u) << "written before";
    table.places[file] = {0, KxTest::onDevice("disk1s2")};
    FakeArbiter::set(description, "DAMediaBlockSize", "512");
    EXPECT_EQ(ask(count, nullptr), 66);
    setBlockSize(0);
    EXPECT_EQ(ask(count, nullptr), 66) << "nothing is divided by it";
    FakeArbiter::set(arbiter.addDisk("disk1s4"), "DAMediaSize", 5);
    table.places[file] = {0, KxTest::onDevice("disk1s4")};
    EXPECT_EQ(ask(count, nullptr), 1168);
}

TEST_F(SectorMap, FailsAsOpeningAndMeasuringDo) {
    unsigned count = 0;
    fs::remove(file);
    EXPECT_EQ(ask(count, nullptr), ENOENT);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(ask(count, nullptr), ESPIPE) << "and nobody waits for a writer";
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(ask(count, nullptr), measuring(file) == 0 ? -1 : measuring(file)) << "a folder";
    fs::remove(file);
    fs::create_symlink("/dev/zero", file);
    EXPECT_EQ(ask(count, nullptr), -1) << "a device";
    EXPECT_EQ(extents.fetches, 0);
}

TEST_F(SectorMap, IsNotMistakenInAnOldErrorNumber) {
    resize(8192);
    extents.extents = {{0, 4096, 8192}};
    errno = EIO;
    EXPECT_EQ(map().result, 0);
}

TEST_F(SectorMap, CountsBeyondWhatFitsInto32Bits) {
    resize(1ULL << 40);
    extents.extents = {{0, 1ULL << 50, 1ULL << 40}};
    EXPECT_EQ(map().runs, (Runs{{1LL << 41, 1LL << 31}}));
    EXPECT_EQ(size, 1LL << 40);
}
