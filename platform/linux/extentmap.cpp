#include "platform/extentmap.h"

#include "platform/replaceable.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/vfs.h>

namespace Korvex {

namespace {

constexpr unsigned extentsAtOnce = 2048;
constexpr long xfsMagic = 0x58465342;

/// What is no run of blocks that hold the file's bytes as they are.
constexpr unsigned unusable = FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC |
                              FIEMAP_EXTENT_ENCODED | FIEMAP_EXTENT_DATA_ENCRYPTED |
                              FIEMAP_EXTENT_NOT_ALIGNED | FIEMAP_EXTENT_DATA_INLINE |
                              FIEMAP_EXTENT_DATA_TAIL;

/// Whether the addresses in a file's map are places on the file system's own node. Some spread
/// over several devices, and count in a space of their own.
bool countsOnItsNode(int descriptor) {
    struct statfs status {};
    if (fstatfs(descriptor, &status) != 0)
        return false;
    if (status.f_type == EXT4_SUPER_MAGIC)
        return true;
    fsxattr attributes{};
    return status.f_type == xfsMagic && ioctl(descriptor, FS_IOC_FSGETXATTR, &attributes) == 0 &&
           (attributes.fsx_xflags & FS_XFLAG_REALTIME) == 0;
}

/// A request to the kernel with room for its answer.
class Query {
public:
    Query() : memory(std::make_unique<std::byte[]>(size)) {}

    fiemap& request() { return *reinterpret_cast<fiemap*>(memory.get()); }
    fiemap_extent& extent(unsigned index) {
        return reinterpret_cast<fiemap_extent*>(memory.get() + sizeof(fiemap))[index];
    }

    bool ask(int descriptor, unsigned long long start, unsigned long long end) {
        fiemap& asked = request();
        std::memset(memory.get(), 0, sizeof(fiemap));
        asked.fm_start = start;
        asked.fm_length = end - start;
        asked.fm_flags = FIEMAP_FLAG_SYNC; // what is not on the disk yet has no blocks
        asked.fm_extent_count = extentsAtOnce;
        return ioctl(descriptor, FS_IOC_FIEMAP, &asked) == 0;
    }

private:
    static constexpr std::size_t size = sizeof(fiemap) + extentsAtOnce * sizeof(fiemap_extent);
    std::unique_ptr<std::byte[]> memory;
};

class LinuxExtentMap final : public ExtentMap {
public:
    std::optional<std::vector<Extent>> extentsOf(int descriptor,
                                                 unsigned long long length) override {
        if (!countsOnItsNode(descriptor))
            return std::nullopt;
        std::vector<Extent> extents;
        Query query;
        unsigned long long position = 0;
        while (position < length) {
            if (!query.ask(descriptor, position, length))
                return std::nullopt;
            const unsigned count = query.request().fm_mapped_extents;
            if (count == 0)
                break;
            for (unsigned i = 0; i < count; ++i) {
                const fiemap_extent& got = query.extent(i);
                if ((got.fe_flags & unusable) != 0 || got.fe_length == 0)
                    return std::nullopt;
                extents.push_back({got.fe_logical, got.fe_physical, got.fe_length});
                position = got.fe_logical + got.fe_length;
            }
            if ((query.extent(count - 1).fe_flags & FIEMAP_EXTENT_LAST) != 0)
                break;
        }
        return extents;
    }
};

} // namespace

ExtentMap& extentMap() {
    static LinuxExtentMap map;
    return inForce<ExtentMap>(map);
}

} // namespace Korvex
