#pragma once

#include "platform/disknames.h"

#include <libfdisk/libfdisk.h>

#include <memory>

namespace DiskUtil {

/// The entry of a slice in its disk's partition table. Operations throw \ref Failure.
class PartitionEntry {
public:
    /// Reads the table. \param startsAt Where the kernel has the slice, in bytes.
    PartitionEntry(const Korvex::DiskNode& slice, unsigned long long startsAt);

    /// Whether the table has the slice, and as one that may grow or shrink by itself. Only then is
    /// there anything to change.
    [[nodiscard]] bool isThere() const { return entry != nullptr; }

    /// How many bytes the slice could have without touching another one.
    [[nodiscard]] unsigned long long largestSize() const;

    /// A size up to whole sectors.
    [[nodiscard]] unsigned long long wholeSectors(unsigned long long bytes) const {
        return (bytes + sector - 1) / sector * sector;
    }

    /// Writes another size, up to whole sectors, to the disk. The kernel is not told.
    void resize(unsigned long long bytes);

private:
    struct Free {
        void operator()(fdisk_context* table) const;
        void operator()(fdisk_partition* one) const { fdisk_unref_partition(one); }
        void operator()(fdisk_table* all) const { fdisk_unref_table(all); }
    };

    void open(bool readOnly);
    void find();

    const Korvex::DiskNode node;
    const unsigned long long start;
    std::unique_ptr<fdisk_context, Free> context;
    std::unique_ptr<fdisk_partition, Free> entry;
    unsigned long long sector = 0;
};

} // namespace DiskUtil
