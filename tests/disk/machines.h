#pragma once

#include "common/loopdisk.h"
#include "fakes/devicetree.h"
#include "fakes/diskarbiter.h"
#include "fakes/extentmap.h"
#include "fakes/volumetable.h"
#include "realdisk.h"

#include <fcntl.h>
#include <filesystem>
#include <list>
#include <unistd.h>

namespace KxTest {

/// This machine, with a disk of the test's own that has two slices with file systems.
class RealMachine {
public:
    [[nodiscard]] bool isReady() {
        return LoopDisk::isPossible() && disk.addPartition(1, mebibyte, 12 * mebibyte) &&
               disk.addPartition(2, 13 * mebibyte, 12 * mebibyte) &&
               makeFileSystem(disk.partitionPath(1), "One") &&
               makeFileSystem(disk.partitionPath(2), "Two");
    }
    /// The name of a slice.
    [[nodiscard]] std::string slice(unsigned number) const {
        return nodeOf(disk.partitionPath(number)).value_or(Korvex::DiskNode{}).name();
    }
    /// Mounts a slice as long as the machine lives. \return Where.
    std::string mountSlice(unsigned number) {
        std::string folder = std::filesystem::current_path() / slice(number);
        return mounted.emplace_back(disk.partitionPath(number), folder).folder();
    }
    /// Has mounting slice 1 refused: it is mounted already.
    void refuseMounting() { mountSlice(1); }

    /// A file of that many bytes, in the hands of the caller.
    int openFile(std::size_t size) {
        const std::string path = mountSlice(1) + "/file";
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        const std::string bytes(size, 'x');
        return write(file, bytes.data(), size) == static_cast<ssize_t>(size) ? file : -1;
    }

private:
    const LoopDisk disk{LoopDisk::isPossible() ? 32 * mebibyte : 0};
    std::list<Mounted> mounted;
};

/// The same, as tests have it that need no machine.
class FakeMachine {
public:
    [[nodiscard]] static bool isReady() { return true; }
    [[nodiscard]] static std::string slice(unsigned number) {
        return "disk7s" + std::to_string(number);
    }
    std::string mountSlice(unsigned number) {
        std::string folder = "/Volumes/" + slice(number);
        table.add(number == 1 ? "One" : "Two", slice(number), folder);
        table.places[folder] = {0, onDevice(slice(number))};
        return folder;
    }
    void refuseMounting() { arbiter.answer = kDAReturnBusy; }
    int openFile(std::size_t size) {
        constexpr unsigned long long half = 4096;
        extents.extents = {{0, 81920, half}, {half, 40960, size - half}};
        return open("/dev/null", O_RDONLY | O_CLOEXEC);
    }

    FakeMachine() {
        const Korvex::DeviceTreeEntry part{true, false, false, false, "part"};
        const Korvex::DeviceTreeEntry whole{true, true, false, false, "disk"};
        for (const unsigned number : {1U, 2U}) {
            FakeArbiter::set(arbiter.addDisk(slice(number)), "DAMediaBSDName",
                             slice(number).c_str());
            tree.devices[slice(number)].entries = {part, whole};
        }
    }

private:
    FakeArbiter arbiter;
    FakeVolumeTable table;
    FakeExtentMap extents;
    FakeDeviceTree tree;
};

} // namespace KxTest
