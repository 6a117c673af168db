#include "platform/linux/disknumberstore.h"

#include "common/unprivileged.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

using Korvex::AttachedDisk;
using Korvex::BlockDevices;
using Korvex::DiskNumberStore;

namespace {

/// A machine whose kernel lists what a test says.
class DiskNumberStoreTest : public testing::Test {
protected:
    DiskNumberStoreTest() {
        fs::create_directories(place / "sys/block");
        fs::create_directories(place / "sys/dev/block");
    }
    ~DiskNumberStoreTest() override { fs::remove_all(place); }

    static void put(const fs::path& file, const std::string& contents) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << contents << '\n';
    }

    void attach(const std::string& name, unsigned minor, unsigned sequence, bool physical = false,
                const std::string& size = "2048") const {
        const fs::path folder = place / "sys/devices" / name;
        put(folder / "uevent", "MAJOR=7\nMINOR=" + std::to_string(minor) + "\nDEVNAME=" + name +
                                   "\nDEVTYPE=disk\nDISKSEQ=" + std::to_string(sequence));
        put(folder / "size", size);
        if (physical)
            fs::create_directories(folder / "device");
        link("../devices/" + name, "block/" + name);
        link("../../devices/" + name, "dev/block/7:" + std::to_string(minor));
    }

    void addPartition(const std::string& disk, const std::string& name, unsigned number,
                      unsigned minor) const {
        const fs::path folder = place / "sys/devices" / disk / name;
        put(folder / "uevent", "MAJOR=259\nMINOR=" + std::to_string(minor) + "\nDEVNAME=" + name +
                                   "\nDEVTYPE=partition\nPARTN=" + std::to_string(number));
        link("../../devices/" + disk + '/' + name, "dev/block/259:" + std::to_string(minor));
    }

    void link(const std::string& target, const std::string& name) const {
        fs::remove(place / "sys" / name);
        fs::create_symlink(target, place / "sys" / name);
    }

    void detach(const std::string& name) const { fs::remove(place / "sys/block" / name); }

    [[nodiscard]] BlockDevices devices() const { return BlockDevices(place / "sys"); }
    [[nodiscard]] DiskNumberStore newProcess() const { return {place / "run", devices()}; }

    static std::string namesIn(const DiskNumberStore::State& state) {
        std::string names;
        for (const AttachedDisk& disk : state.disks)
            names += std::to_string(state.numbers->numberOf(disk).value_or(99)) + '=' +
                     disk.device.systemName + ' ';
        return names;
    }

    [[nodiscard]] fs::path file() const { return place / "run/disks"; }
    [[nodiscard]] ino_t identity() const {
        struct stat status {};
        return stat(file().c_str(), &status) == 0 ? status.st_ino : 0;
    }

    const fs::path place = fs::current_path() / "machine";
};

} // namespace

TEST_F(DiskNumberStoreTest, ListsWhatHasAMedium) {
    attach("loop1", 1, 3);
    attach("loop0", 0, 4);
    attach("loop2", 2, 5, false, "0");
    attach("vda", 9, 8, true);
    attach("nvme0c0n1", 10, 9, true);
    put(place / "sys/devices/nvme0c0n1/hidden", "1");
    EXPECT_EQ(namesIn(newProcess().current()), "1=loop1 2=loop0 0=vda ");
}

TEST_F(DiskNumberStoreTest, IsTheSameInEveryProcess) {
    attach("loop0", 0, 1);
    DiskNumberStore first = newProcess();
    EXPECT_EQ(namesIn(first.current()), "0=loop0 ");
    attach("vda", 9, 2, true);
    DiskNumberStore second = newProcess();
    EXPECT_EQ(namesIn(second.current()), "0=loop0 1=vda ");
    EXPECT_EQ(namesIn(first.current()), "0=loop0 1=vda ");
    detach("loop0");
    attach("sdb", 5, 3, true);
    EXPECT_EQ(namesIn(first.current()), "1=vda 0=sdb ");
    EXPECT_EQ(namesIn(newProcess().current()), "1=vda 0=sdb ");
}

TEST_F(DiskNumberStoreTest, WritesOnlyWhenSomethingHasChanged) {
    attach("loop0", 0, 1);
    DiskNumberStore store = newProcess();
    EXPECT_FALSE(fs::exists(file()));
    (void)store.stored();
    EXPECT_FALSE(fs::exists(file())) << "a look at what is stored";
    (void)store.current();
    const ino_t written = identity();
    EXPECT_NE(written, 0u);
    (void)store.current();
    (void)newProcess().current();
    EXPECT_EQ(identity(), written);
    attach("loop1", 1, 2);
    (void)store.current();
    EXPECT_NE(identity(), written);
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms(0644));
    EXPECT_FALSE(fs::exists(place / "run/disks.new"));
}

TEST_F(DiskNumberStoreTest, IsThereForEveryoneWhateverTheMask) {
    attach("loop0", 0, 1);
    const mode_t before = umask(0777);
    (void)newProcess().current();
    umask(before);
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms(0644));
    EXPECT_EQ(fs::status(place / "run").permissions(), fs::perms(0755));
}

TEST_F(DiskNumberStoreTest, WritesAFileThatWasRemovedAnew) {
    attach("loop0", 0, 1);
    attach("vda", 9, 2, true);
    DiskNumberStore store = newProcess();
    const std::string names = namesIn(store.current());
    fs::remove(file());
    EXPECT_EQ(namesIn(store.current()), names);
    EXPECT_TRUE(fs::exists(file()));
}

TEST_F(DiskNumberStoreTest, StartsAnewInAnotherRunOfTheMachine) {
    attach("loop0", 0, 1);
    put(file(), "another-run\n7 1 loop0");
    EXPECT_EQ(namesIn(newProcess().current()), "0=loop0 ");
}

TEST_F(DiskNumberStoreTest, GivesTheSameNumbersWhereItMayNotWrite) {
    attach("loop0", 0, 1);
    attach("vda", 9, 2, true);
    DiskNumberStore unwritable("/proc/none", devices());
    EXPECT_EQ(namesIn(unwritable.current()), "1=loop0 0=vda ");
    EXPECT_EQ(namesIn(newProcess().current()), "1=loop0 0=vda ");
}

TEST_F(DiskNumberStoreTest, KeepsItsMemoryWhereItMayNotWrite) {
    attach("loop0", 0, 1);
    DiskNumberStore store("/proc/none", devices());
    EXPECT_EQ(namesIn(store.current()), "0=loop0 ");
    attach("vda", 9, 2, true);
    EXPECT_EQ(namesIn(store.current()), "0=loop0 1=vda ");
}

TEST_F(DiskNumberStoreTest, ReadsWhatOthersWroteWithoutTheRightToWrite) {
    attach("loop0", 0, 1);
    (void)newProcess().current();
    attach("vda", 9, 2, true);
    (void)newProcess().current();
    fs::permissions(place.parent_path(), fs::perms(0755));
    EXPECT_TRUE(KxTest::asOrdinaryUser(
        [&] { EXPECT_EQ(namesIn(newProcess().current()), "0=loop0 1=vda "); }));
}

TEST_F(DiskNumberStoreTest, AgreesAcrossThreadsThatStartTogether) {
    for (unsigned i = 0; i < 20; ++i)
        attach("loop" + std::to_string(i), i, 100 - i);
    std::vector<std::string> seen(8);
    std::vector<std::thread> threads;
    for (std::string& names : seen)
        threads.emplace_back([&] {
            DiskNumberStore store = newProcess();
            names = namesIn(store.current());
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& names : seen)
        EXPECT_EQ(names, seen.front());
}

TEST_F(DiskNumberStoreTest, FindsDevicesByTheirNumber) {
    attach("loop0", 0, 7);
    addPartition("loop0", "loop0p3", 3, 4);
    const auto whole = devices().find(7, 0);
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->device.systemName, "loop0");
    EXPECT_EQ(whole->device.partition, 0u);
    const auto slice = devices().find(259, 4);
    ASSERT_TRUE(slice);
    EXPECT_EQ(slice->device.path, "/dev/loop0p3");
    EXPECT_EQ(slice->device.partition, 3u);
    EXPECT_EQ(slice->disk.device.systemName, "loop0");
    EXPECT_EQ(slice->disk.sequence, 7u);
    EXPECT_FALSE(devices().find(259, 5));
    const auto slices = devices().partitions("loop0");
    ASSERT_EQ(slices.size(), 1u);
    EXPECT_EQ(slices[0].minor, 4u);
}

TEST_F(DiskNumberStoreTest, ReadsPartitionNumbersAndSequencesOfOlderKernels) {
    attach("loop0", 0, 7);
    put(place / "sys/devices/loop0/uevent", "MAJOR=7\nMINOR=0\nDEVNAME=loop0\nDEVTYPE=disk");
    EXPECT_EQ(devices().disk("loop0")->sequence, 0u);
    put(place / "sys/devices/loop0/diskseq", "9");
    EXPECT_EQ(devices().disk("loop0")->sequence, 9u);
    addPartition("loop0", "loop0p3", 3, 4);
    put(place / "sys/devices/loop0/loop0p3/uevent",
        "MAJOR=259\nMINOR=4\nDEVNAME=loop0p3\nDEVTYPE=partition");
    put(place / "sys/devices/loop0/loop0p3/partition", "3");
    EXPECT_EQ(devices().find(259, 4)->device.partition, 3u);
}
