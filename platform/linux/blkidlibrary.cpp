#include "platform/linux/blkidlibrary.h"

#include "platform/linux/symbol.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

/// \return Whether all is there.
bool load(BlkidLibrary& blkid) {
    void* const library = dlopen("libblkid.so.1", RTLD_NOW | RTLD_LOCAL);
    return library && findSymbol(library, "blkid_new_probe", blkid.newProbe) &&
           findSymbol(library, "blkid_free_probe", blkid.freeProbe) &&
           findSymbol(library, "blkid_probe_set_device", blkid.setDevice) &&
           findSymbol(library, "blkid_probe_enable_superblocks", blkid.enableSuperblocks) &&
           findSymbol(library, "blkid_probe_set_superblocks_flags", blkid.setSuperblocksFlags) &&
           findSymbol(library, "blkid_probe_filter_superblocks_type", blkid.filterSuperblocks) &&
           findSymbol(library, "blkid_probe_enable_partitions", blkid.enablePartitions) &&
           findSymbol(library, "blkid_probe_set_partitions_flags", blkid.setPartitionsFlags) &&
           findSymbol(library, "blkid_do_safeprobe", blkid.probe) &&
           findSymbol(library, "blkid_probe_lookup_value", blkid.lookUp);
}

} // namespace

const BlkidLibrary* BlkidLibrary::loaded() {
    static BlkidLibrary blkid;
    static const bool isWhole = load(blkid);
    return isWhole ? &blkid : nullptr;
}

} // namespace Korvex
