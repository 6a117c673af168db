#include "partitiontable.h"

#include "failure.h"
#include "partition.h"

#include <algorithm>
#include <new>
#include <string>

namespace DiskUtil {

void PartitionEntry::Free::operator()(fdisk_context* table) const {
    fdisk_deassign_device(table, 1);
    fdisk_unref_context(table);
}

PartitionEntry::PartitionEntry(const Korvex::DiskNode& slice, unsigned long long startsAt)
    : node(slice), start(startsAt) {
    open(true);
}

void PartitionEntry::open(bool readOnly) {
    entry.reset();
    context.reset(fdisk_new_context());
    if (!context)
        throw std::bad_alloc();
    fdisk_disable_dialogs(context.get(), 1);
    const std::string disk = wholeOf(node).path;
    if (fdisk_assign_device(context.get(), disk.c_str(), readOnly ? 1 : 0) != 0)
        throw Failure("cannot open " + disk + " for its partition table");
    sector = fdisk_get_sector_size(context.get());
    if (fdisk_has_label(context.get()) != 0)
        find();
}

void PartitionEntry::find() {
    fdisk_partition* one = nullptr;
    const int result = fdisk_get_partition(context.get(), node.slice - 1, &one);
    entry.reset(one);
    // One of another place is another slice. Nested ones are bound by what they are nested in.
    if (result != 0 || fdisk_partition_has_start(one) == 0 || fdisk_partition_has_size(one) == 0 ||
        fdisk_partition_get_start(one) * sector != start || fdisk_partition_is_nested(one) != 0 ||
        fdisk_partition_is_container(one) != 0)
        entry.reset();
}

unsigned long long PartitionEntry::largestSize() const {
    fdisk_table* all = nullptr;
    const int result = fdisk_get_partitions(context.get(), &all);
    const std::unique_ptr<fdisk_table, Free> table(all);
    if (result != 0)
        throw Failure("cannot read the partition table of " + wholeOf(node).path);
    const unsigned long long first = start / sector;
    unsigned long long end = fdisk_get_last_lba(context.get()) + 1;
    for (std::size_t i = 0; i < fdisk_table_get_nents(all); ++i) {
        const unsigned long long begin =
            fdisk_partition_get_start(fdisk_table_get_partition(all, i));
        if (begin > first)
            end = std::min(end, begin);
    }
    return (end - first) * sector;
}

void PartitionEntry::resize(unsigned long long bytes) {
    open(false);
    const std::unique_ptr<fdisk_partition, Free> changed(fdisk_new_partition());
    if (!changed)
        throw std::bad_alloc();
    if (!entry || fdisk_partition_set_start(changed.get(), start / sector) != 0 ||
        fdisk_partition_set_size(changed.get(), wholeSectors(bytes) / sector) != 0 ||
        fdisk_partition_size_explicit(changed.get(), 1) != 0 ||
        fdisk_set_partition(context.get(), node.slice - 1, changed.get()) != 0 ||
        fdisk_write_disklabel(context.get()) != 0)
        throw Failure("cannot change the partition table for " + node.name());
    open(true);
}

} // namespace DiskUtil
