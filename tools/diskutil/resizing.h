#pragma once

#include "extfilesystem.h"
#include "partition.h"
#include "partitiontable.h"
#include "platform/descriptor.h"
#include "volume.h"

#include <optional>

namespace DiskUtil {

/// A volume whose size is to be changed: the file system and, where the disk's partition table has
/// its slice, the slice with it. Operations throw \ref Failure.
///
/// Whenever the work is interrupted, the slice is at least as large as the file system.
class Resizing {
public:
    explicit Resizing(const Volume& ofVolume);

    /// \name Sizes of the file system in bytes
    /// @{
    [[nodiscard]] unsigned long long size() const { return fileSystem.size(); }
    [[nodiscard]] unsigned long long minimumSize() const;
    [[nodiscard]] unsigned long long maximumSize() const;
    /// @}

    /// Changes the size, and that of the slice to exactly this one. One that does not fit is
    /// refused before anything is changed. A mounted volume is taken off meanwhile where that must
    /// be, and put back.
    void resize(unsigned long long bytes);

private:
    void reserveDisk();
    void growPartition(unsigned long long bytes);
    void shrinkPartition(unsigned long long bytes);
    [[nodiscard]] bool growMounted(unsigned long long bytes);
    void resizeTakenOff(unsigned long long bytes);
    void checkUnused() const;
    void mend() const;

    const Volume volume;
    ExtFileSystem fileSystem;
    std::optional<Partition> partition;  ///< Of a slice
    std::optional<PartitionEntry> entry; ///< Of a slice whose table can be changed
    Korvex::Descriptor reserved;
};

} // namespace DiskUtil
