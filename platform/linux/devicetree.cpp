#include "platform/devicetree.h"

#include "platform/disknames.h"
#include "platform/linux/devicepath.h"
#include "platform/linux/opticalmedium.h"
#include "platform/linux/sysfs.h"
#include "platform/replaceable.h"
#include "platform/scopes.h"

namespace Korvex {

namespace {

DeviceTreeEntry entryOf(const std::string& folder, const DiskNode& node) {
    DeviceTreeEntry entry;
    entry.className = driverOf(folder);
    entry.isMedium = Sysfs::linkName(folder + "/subsystem") == "block";
    if (!entry.isMedium)
        return entry;
    const auto event = Sysfs::read(folder + "/uevent");
    if (event)
        entry.isWhole = Sysfs::field(*event, "DEVTYPE") == "disk";
    if (entry.isWhole.value_or(false) && entry.className == "sr") {
        const OpticalMedium medium = opticalMediumIn(
            node.slice == 0 ? node.path : "/dev/" + folder.substr(folder.rfind('/') + 1));
        entry.isCD = medium == OpticalMedium::CD;
        entry.isDVD = medium == OpticalMedium::DVD;
    }
    return entry;
}

class LinuxDeviceTree final : public DeviceTree {
public:
    DeviceAncestry ancestryOf(const std::string& disk) override {
        const ErrorNumberKept meanwhile;
        const TerminationDeferred untilClosed;
        DeviceAncestry found;
        const auto node = diskNode(disk);
        const std::string folder = node ? deviceFolder(*node) : std::string();
        if (folder.empty()) {
            found.result = DeviceAncestry::Result::NoDevice;
            return found;
        }
        for (const std::string& device : ancestry(folder))
            found.entries.push_back(entryOf(device, *node));
        return found;
    }
};

} // namespace

DeviceTree& deviceTree() {
    static LinuxDeviceTree tree;
    return inForce<DeviceTree>(tree);
}

} // namespace Korvex
