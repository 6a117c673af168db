#pragma once

#include "platform/descriptor.h"
#include "platform/linux/disknumbers.h"

#include <memory>
#include <mutex>
#include <string>

namespace Korvex {

/// Where the numbers of disks are kept, for all processes: a small text file that is written when a
/// disk has come or gone, and only then.
///
/// A process that may not write there has the same rules and its own memory. Any thread may use a
/// store.
class DiskNumberStore {
public:
    DiskNumberStore(std::string inFolder, BlockDevices ofDevices)
        : folder(std::move(inFolder)), devices(std::move(ofDevices)) {}

    /// The numbers as they were given last; disks may have come and gone since. The object stays
    /// the same one while nothing has changed.
    [[nodiscard]] std::shared_ptr<const DiskNumbers> stored();

    /// The disks that are there and their numbers.
    struct State {
        std::vector<AttachedDisk> disks;
        std::shared_ptr<const DiskNumbers> numbers;
    };
    [[nodiscard]] State current();

private:
    [[nodiscard]] std::shared_ptr<const DiskNumbers> read();
    [[nodiscard]] State compute();
    void write(const DiskNumbers& numbers) const;
    [[nodiscard]] Descriptor lockFolder() const;

    const std::string folder;
    const BlockDevices devices;
    std::mutex mutex;    // guards what follows
    std::string text;    // of the file, when it was read last
    bool isKept = false; // whether there was a file
    std::shared_ptr<const DiskNumbers> numbers = std::make_shared<DiskNumbers>();
};

/// The machine's own, in the run-time folder.
DiskNumberStore& diskNumberStore();

} // namespace Korvex
