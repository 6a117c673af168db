#pragma once

#include <blkid/blkid.h>

namespace Korvex {

/// The library that recognises file systems and partition tables, loaded when it is first asked
/// for.
struct BlkidLibrary {
    decltype(&::blkid_new_probe) newProbe = nullptr;
    decltype(&::blkid_free_probe) freeProbe = nullptr;
    decltype(&::blkid_probe_set_device) setDevice = nullptr;
    decltype(&::blkid_probe_enable_superblocks) enableSuperblocks = nullptr;
    decltype(&::blkid_probe_set_superblocks_flags) setSuperblocksFlags = nullptr;
    decltype(&::blkid_probe_filter_superblocks_type) filterSuperblocks = nullptr;
    decltype(&::blkid_probe_enable_partitions) enablePartitions = nullptr;
    decltype(&::blkid_probe_set_partitions_flags) setPartitionsFlags = nullptr;
    decltype(&::blkid_do_safeprobe) probe = nullptr;
    decltype(&::blkid_probe_lookup_value) lookUp = nullptr;

    /// Null where the library is not installed.
    static const BlkidLibrary* loaded();
};

} // namespace Korvex
