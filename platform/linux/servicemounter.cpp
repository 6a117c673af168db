#include "platform/linux/servicemounter.h"

#include "platform/linux/systembus.h"
#include "platform/linux/volumemounter.h"

#include <atomic>
#include <cctype>
#include <string_view>

namespace Korvex {

namespace {

std::atomic<std::chrono::microseconds> timeLimit{std::chrono::seconds(60)};

/// The service's object of a device. Other characters than letters and digits are written as their
/// numbers.
std::string objectOf(const DiskNode& node) {
    constexpr char digits[] = "0123456789abcdef";
    std::string path = "/org/freedesktop/UDisks2/block_devices/";
    for (const char character : node.path.substr(node.path.rfind('/') + 1)) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0)
            path += character;
        else
            (path += '_') += {digits[byte >> 4], digits[byte & 15]};
    }
    return path;
}

struct Rule {
    std::string_view error; // what a name of an error ends with
    DAReturn status;
};

constexpr Rule rules[] = {
    {".DeviceBusy", kDAReturnBusy},
    {".AlreadyMounted", kDAReturnBusy},
    {".NotMounted", kDAReturnNotMounted},
    {".NotAuthorized", kDAReturnNotPrivileged},
    {".NotAuthorizedCanObtain", kDAReturnNotPrivileged},
    {".NotAuthorizedDismissed", kDAReturnNotPermitted},
    {".OptionNotPermitted", kDAReturnNotPermitted},
    {".NotSupported", kDAReturnUnsupported},
    {".AccessDenied", kDAReturnNotPrivileged},
    {".UnknownObject", kDAReturnNotFound},
    {".UnknownInterface", kDAReturnUnsupported}, // nothing on it that can be mounted
    {".UnknownMethod", kDAReturnUnsupported},
    {".NoMemory", kDAReturnNoResources},
    {".NoReply", kDAReturnNotReady},
    {".Timeout", kDAReturnNotReady},
    {".ServiceUnknown", kDAReturnNotReady},
    {".NameHasNoOwner", kDAReturnNotReady},
    {".Disconnected", kDAReturnNotReady},
};

DAReturn statusOf(const BusReply& reply) {
    if (reply)
        return kDAReturnSuccess;
    if (reply.errorName().empty())
        return kDAReturnNotReady; // no bus
    for (const Rule& rule : rules) {
        if (reply.errorName().ends_with(rule.error))
            return rule.status;
    }
    return kDAReturnError;
}

class ServiceMounter final : public VolumeMounter {
public:
    DAReturn mount(const DiskNode& node, const std::string& target) override {
        // The service chooses the place itself; another one than asked for would not be noticed.
        if (!target.empty())
            return kDAReturnNotPrivileged;
        const std::string path = objectOf(node);
        SystemBus bus;
        // The service itself adds nosuid and nodev.
        return statusOf(bus.call(fileSystem(path), "Mount", timeLimit, "a{sv}", 0));
    }

    DAReturn unmount(const DiskNode& node, bool force) override {
        const std::string path = objectOf(node);
        SystemBus bus;
        return statusOf(
            force ? bus.call(fileSystem(path), "Unmount", timeLimit, "a{sv}", 1, "force", "b", 1)
                  : bus.call(fileSystem(path), "Unmount", timeLimit, "a{sv}", 0));
    }

private:
    static BusObject fileSystem(const std::string& path) {
        return {"org.freedesktop.UDisks2", path.c_str(), "org.freedesktop.UDisks2.Filesystem"};
    }
};

} // namespace

std::chrono::microseconds setServiceTimeLimit(std::chrono::microseconds limit) {
    return timeLimit.exchange(limit);
}

VolumeMounter& serviceMounter() {
    static ServiceMounter mounter;
    return mounter;
}

} // namespace Korvex
