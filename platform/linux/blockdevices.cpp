#include "platform/linux/blockdevices.h"

#include "platform/linux/sysfs.h"

#include <algorithm>
#include <array>
#include <climits>
#include <string_view>
#include <unistd.h>

namespace Korvex {

namespace {

unsigned numberIn(std::string_view contents, std::string_view key) {
    return static_cast<unsigned>(Sysfs::number(Sysfs::field(contents, key)).value_or(0));
}

/// What a device tells of itself; one file has it all.
std::optional<BlockDevice> describe(const std::string& folder, const std::string& name,
                                    std::string_view event) {
    const std::string_view node = Sysfs::field(event, "DEVNAME");
    if (node.empty())
        return std::nullopt;
    BlockDevice device;
    device.systemName = name;
    device.path = "/dev/" + std::string(node);
    device.major = numberIn(event, "MAJOR");
    device.minor = numberIn(event, "MINOR");
    device.partition = numberIn(event, "PARTN");
    if (device.partition == 0 && Sysfs::field(event, "DEVTYPE") == "partition")
        device.partition =
            static_cast<unsigned>(Sysfs::readNumber(folder + "/partition").value_or(0));
    return device;
}

bool hasMedium(const std::string& folder) {
    return Sysfs::readNumber(folder + "/size").value_or(0) > 0 &&
           Sysfs::readNumber(folder + "/hidden").value_or(0) == 0;
}

unsigned long long sequenceOf(const std::string& folder, std::string_view event) {
    if (const auto told = Sysfs::number(Sysfs::field(event, "DISKSEQ")))
        return *told;
    return Sysfs::readNumber(folder + "/diskseq").value_or(0);
}

std::optional<AttachedDisk> attached(const std::string& folder, const std::string& name) {
    const std::optional<std::string> event = Sysfs::read(folder + "/uevent");
    const auto device = event ? describe(folder, name, *event) : std::nullopt;
    if (!device || device->partition != 0)
        return std::nullopt;
    AttachedDisk disk;
    disk.device = *device;
    disk.sequence = sequenceOf(folder, *event);
    disk.isPhysical = access((folder + "/device").c_str(), F_OK) == 0;
    return disk;
}

std::vector<std::string> pathOfLink(const std::string& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    std::string_view rest(target.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    std::vector<std::string> parts;
    while (!rest.empty()) {
        const std::size_t slash = std::min(rest.find('/'), rest.size());
        parts.emplace_back(rest.substr(0, slash));
        rest.remove_prefix(std::min(slash + 1, rest.size()));
    }
    return parts;
}

} // namespace

std::optional<AttachedDisk> BlockDevices::disk(const std::string& systemName) const {
    const std::string place = folder + "/block/" + systemName;
    return hasMedium(place) ? attached(place, systemName) : std::nullopt;
}

std::vector<AttachedDisk> BlockDevices::disks() const {
    std::vector<AttachedDisk> found;
    for (const std::string& name : Sysfs::namesIn(folder + "/block")) {
        if (auto one = disk(name))
            found.push_back(std::move(*one));
    }
    std::stable_sort(found.begin(), found.end(), [](const AttachedDisk& a, const AttachedDisk& b) {
        return a.sequence < b.sequence;
    });
    return found;
}

std::vector<BlockDevice> BlockDevices::partitions(const std::string& diskName) const {
    std::vector<BlockDevice> found;
    const std::string place = folder + "/block/" + diskName;
    for (const std::string& name : Sysfs::namesIn(place)) {
        if (!name.starts_with(diskName))
            continue;
        std::string own = place;
        own.append("/").append(name);
        const std::optional<std::string> event = Sysfs::read(own + "/uevent");
        auto device = event ? describe(own, name, *event) : std::nullopt;
        if (device && device->partition != 0)
            found.push_back(std::move(*device));
    }
    std::sort(found.begin(), found.end(),
              [](const BlockDevice& a, const BlockDevice& b) { return a.partition < b.partition; });
    return found;
}

std::optional<BlockDevices::Found> BlockDevices::find(unsigned major, unsigned minor) const {
    const std::string link =
        folder + "/dev/block/" + std::to_string(major) + ':' + std::to_string(minor);
    const std::vector<std::string> parts = pathOfLink(link);
    if (parts.size() < 2)
        return std::nullopt;
    const std::optional<std::string> event = Sysfs::read(link + "/uevent");
    const auto device = event ? describe(link, parts.back(), *event) : std::nullopt;
    if (!device)
        return std::nullopt;
    const std::string whole = device->partition == 0 ? link : link + "/..";
    const std::string& name = device->partition == 0 ? parts.back() : parts[parts.size() - 2];
    const auto disk = attached(whole, name);
    if (!disk)
        return std::nullopt;
    return Found{*device, *disk};
}

} // namespace Korvex
