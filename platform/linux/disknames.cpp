#include "platform/disknames.h"

#include "platform/linux/disknumberstore.h"
#include "platform/linux/sysfs.h"

#include <algorithm>
#include <climits>

namespace Korvex {

namespace {

DiskNode nodeOf(unsigned number, const AttachedDisk& disk, const BlockDevice& device) {
    return {number,      device.partition, device.major, device.minor, device.systemName,
            device.path, disk.sequence};
}

struct Name {
    unsigned disk = 0;
    unsigned slice = 0;
};

std::optional<Name> parse(std::string_view text) {
    constexpr std::string_view prefix = "disk";
    if (!text.starts_with(prefix))
        return std::nullopt;
    const std::string_view numbers = text.substr(prefix.size());
    const std::size_t separator = std::min(numbers.find('s'), numbers.size());
    const auto disk = Sysfs::number(numbers.substr(0, separator));
    const auto slice = separator == numbers.size() ? std::optional(0ULL)
                                                   : Sysfs::number(numbers.substr(separator + 1));
    if (!disk || !slice || *disk > UINT_MAX || *slice > UINT_MAX)
        return std::nullopt;
    return Name{static_cast<unsigned>(*disk), static_cast<unsigned>(*slice)};
}

/// The disk of a number, if it is still the one that the number was given to.
std::optional<AttachedDisk> attachedDisk(const DiskNumbers& numbers, unsigned number) {
    const auto key = numbers.diskOf(number);
    auto disk = key ? BlockDevices().disk(key->systemName) : std::nullopt;
    return disk && DiskNumbers::keyOf(*disk) == *key ? disk : std::nullopt;
}

std::optional<BlockDevice> deviceOf(const AttachedDisk& disk, unsigned slice) {
    if (slice == 0)
        return disk.device;
    for (BlockDevice& device : BlockDevices().partitions(disk.device.systemName)) {
        if (device.partition == slice)
            return std::move(device);
    }
    return std::nullopt;
}

} // namespace

std::string DiskNode::name() const {
    const std::string whole = "disk" + std::to_string(disk);
    return slice == 0 ? whole : whole + 's' + std::to_string(slice);
}

std::vector<DiskNode> diskNodes() {
    const ErrorNumberKept meanwhile;
    const DiskNumberStore::State state = diskNumberStore().current();
    std::vector<DiskNode> nodes;
    for (const AttachedDisk& disk : state.disks) {
        const unsigned number = *state.numbers->numberOf(disk);
        nodes.push_back(nodeOf(number, disk, disk.device));
        for (const BlockDevice& slice : BlockDevices().partitions(disk.device.systemName))
            nodes.push_back(nodeOf(number, disk, slice));
    }
    std::stable_sort(nodes.begin(), nodes.end(),
                     [](const DiskNode& a, const DiskNode& b) { return a.disk < b.disk; });
    return nodes;
}

std::optional<DiskNode> diskNode(std::string_view name) {
    const ErrorNumberKept meanwhile;
    const std::optional<Name> asked = parse(name);
    if (!asked)
        return std::nullopt;
    auto disk = attachedDisk(*diskNumberStore().stored(), asked->disk);
    if (!disk)
        disk = attachedDisk(*diskNumberStore().current().numbers, asked->disk);
    const auto device = disk ? deviceOf(*disk, asked->slice) : std::nullopt;
    if (!device)
        return std::nullopt;
    DiskNode node = nodeOf(asked->disk, *disk, *device);
    return node.name() == name ? std::optional(std::move(node)) : std::nullopt;
}

std::optional<DiskNode> diskNodeOfDevice(unsigned major, unsigned minor) {
    const ErrorNumberKept meanwhile;
    const auto found = BlockDevices().find(major, minor);
    if (!found)
        return std::nullopt;
    auto number = diskNumberStore().stored()->numberOf(found->disk);
    if (!number)
        number = diskNumberStore().current().numbers->numberOf(found->disk);
    return number ? std::optional(nodeOf(*number, found->disk, found->device)) : std::nullopt;
}

} // namespace Korvex
