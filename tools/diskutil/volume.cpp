#include "volume.h"

#include "platform/linux/sysfs.h"
#include "text.h"

namespace DiskUtil {

using Korvex::DiskNode;
using Korvex::Mount;

namespace {

Volume volumeOn(const DiskNode& node, const std::vector<Mount>& all) {
    Volume volume{node, {}, mountsOf(node, all)};
    volume.contents = contentsOf(node, volume.mounts.empty() ? nullptr : &volume.mounts.front());
    return volume;
}

} // namespace

std::string Volume::name() const {
    if (!contents.label.empty() || mounts.empty())
        return contents.label;
    const std::string& target = mounts.front().target;
    return target == "/" ? target : target.substr(target.rfind('/') + 1);
}

std::string Volume::shown() const {
    const std::string own = name();
    return node.name() + (own.empty() ? std::string() : " (" + printable(own) + ')');
}

Volume volumeOn(const DiskNode& node) {
    return volumeOn(node, Korvex::mounts());
}

std::vector<Volume> allVolumes() {
    const std::vector<Mount> all = Korvex::mounts();
    std::vector<Volume> volumes;
    for (const DiskNode& node : Korvex::diskNodes())
        volumes.push_back(volumeOn(node, all));
    return volumes;
}

std::vector<Volume> volumesOfDisk(const DiskNode& node) {
    std::vector<Volume> volumes = allVolumes();
    std::erase_if(volumes, [&](const Volume& each) { return each.node.disk != node.disk; });
    return volumes;
}

unsigned long long sizeOf(const DiskNode& node) {
    constexpr unsigned long long unit = 512; // of the kernel's, whatever the device's sectors are
    return Korvex::Sysfs::readNumber("/sys/dev/block/" + std::to_string(node.major) + ':' +
                                     std::to_string(node.minor) + "/size")
               .value_or(0) *
           unit;
}

} // namespace DiskUtil
