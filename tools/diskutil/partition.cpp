#include "partition.h"

#include "failure.h"
#include "platform/descriptor.h"
#include "platform/linux/sysfs.h"
#include "volume.h"

#include <algorithm>
#include <fcntl.h>
#include <linux/blkpg.h>
#include <string>
#include <sys/ioctl.h>

namespace DiskUtil {

using Korvex::DiskNode;

namespace {

unsigned long long startOf(const DiskNode& slice) {
    constexpr unsigned long long unit = 512;
    const auto start = Korvex::Sysfs::readNumber("/sys/dev/block/" + std::to_string(slice.major) +
                                                 ':' + std::to_string(slice.minor) + "/start");
    if (!start)
        throw Failure("the kernel does not tell where " + slice.name() + " begins");
    return *start * unit;
}

} // namespace

DiskNode wholeOf(const DiskNode& slice) {
    const auto whole = Korvex::diskNode("disk" + std::to_string(slice.disk));
    if (!whole)
        throw Failure("the disk of " + slice.name() + " is gone");
    return *whole;
}

Partition::Partition(const DiskNode& slice)
    : node(slice), begin(startOf(slice)), length(sizeOf(slice)) {}

unsigned long long Partition::endOfRoom() const {
    unsigned long long end = sizeOf(wholeOf(node));
    for (const DiskNode& other : Korvex::diskNodes()) {
        if (other.disk != node.disk || other.slice == 0 || other.slice == node.slice)
            continue;
        if (const unsigned long long start = startOf(other); start > begin)
            end = std::min(end, start);
    }
    return end;
}

void Partition::resize(unsigned long long bytes) {
    const DiskNode whole = wholeOf(node);
    const Korvex::Descriptor disk(open(whole.path.c_str(), O_RDONLY | O_CLOEXEC));
    blkpg_partition partition{};
    partition.start = static_cast<long long>(begin);
    partition.length = static_cast<long long>(bytes);
    partition.pno = static_cast<int>(node.slice);
    blkpg_ioctl_arg request{BLKPG_RESIZE_PARTITION, 0, sizeof partition, &partition};
    if (!disk.isOpen() || ioctl(disk.get(), BLKPG, &request) != 0)
        throw systemFailure("the kernel does not take the new size of " + node.name());
    length = bytes;
}

} // namespace DiskUtil
