#include "platform/linux/devicepath.h"

#include "platform/linux/sysfs.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr std::string_view top = "/sys/devices";

std::string parentOf(const std::string& folder) {
    return folder.substr(0, folder.rfind('/'));
}

/// What the kernel calls the driver of block devices with a major number.
std::string blockDriver(unsigned major) {
    std::ifstream file("/proc/devices");
    std::string line;
    while (std::getline(file, line) && line != "Block devices:") {
    }
    unsigned number = 0;
    std::string name;
    while (file >> number >> name) {
        if (number == major)
            return name;
    }
    return {};
}

std::string withoutNumber(std::string name) {
    while (!name.empty() && std::isdigit(static_cast<unsigned char>(name.back())) != 0)
        name.pop_back();
    return name;
}

} // namespace

std::string deviceFolder(const DiskNode& node) {
    const std::string link =
        "/sys/dev/block/" + std::to_string(node.major) + ':' + std::to_string(node.minor);
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(link.c_str(), nullptr),
                                                           std::free);
    return path ? path.get() : "";
}

std::string diskFolder(const DiskNode& node) {
    const std::string folder = deviceFolder(node);
    return node.slice == 0 ? folder : parentOf(folder);
}

std::vector<std::string> ancestry(const std::string& folder) {
    std::vector<std::string> found;
    for (std::string at = folder; at.size() > top.size() && at.starts_with(top);
         at = parentOf(at)) {
        // Folders that only group others are no devices.
        if (access((at + "/uevent").c_str(), F_OK) == 0)
            found.push_back(at);
    }
    return found;
}

std::string driverOf(const std::string& folder) {
    for (const char* link : {"/driver", "/device/driver"}) {
        std::string name = Sysfs::linkName(folder + link);
        if (!name.empty())
            return name;
    }
    std::string kind = Sysfs::linkName(folder + "/subsystem");
    if (kind != "block")
        return kind;
    const std::string event = Sysfs::read(folder + "/uevent").value_or("");
    const auto major = Sysfs::number(Sysfs::field(event, "MAJOR")).value_or(0);
    const std::string driver = blockDriver(static_cast<unsigned>(major));
    // Numbers that are shared by all drivers say nothing.
    return driver.empty() || driver == "blkext"
               ? withoutNumber(folder.substr(folder.rfind('/') + 1))
               : driver;
}

} // namespace Korvex
