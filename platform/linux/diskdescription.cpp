#include "platform/linux/diskdescription.h"

#include "platform/corefoundation/object.h"
#include "platform/linux/blockdevices.h"
#include "platform/linux/devicepath.h"
#include "platform/linux/mediumcontents.h"
#include "platform/linux/mounts.h"
#include "platform/linux/sysfs.h"
#include "platform/scopes.h"

#include <sys/types.h>
#include <unistd.h>

namespace Korvex {

namespace {

using Cf::Owned;

constexpr unsigned long long sectorSize = 512; // what the kernel counts sizes in

Owned<CFStringRef> stringOf(const std::string& text) {
    Owned<CFStringRef> made(
        CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
    return made ? std::move(made)
                : Owned<CFStringRef>(
                      CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingISOLatin1));
}

/// A description that grows. What is not known is left out.
class Description {
public:
    Description()
        : dictionary(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                               &kCFTypeDictionaryValueCallBacks)) {}

    void text(const char* key, const std::string& value) {
        if (!value.empty())
            set(key, stringOf(value).get());
    }
    void flag(const char* key, bool value) { set(key, value ? kCFBooleanTrue : kCFBooleanFalse); }
    void number(const char* key, unsigned long long value) {
        const Owned<CFNumberRef> made(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
        set(key, made.get());
    }
    void path(const char* key, const std::string& value) {
        const Owned<CFURLRef> made(CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8*>(value.data()),
            static_cast<CFIndex>(value.size()), true));
        set(key, made.get());
    }
    [[nodiscard]] CFDictionaryRef release() { return dictionary.release(); }

private:
    void set(const char* key, CFTypeRef value) {
        const Owned<CFStringRef> name = stringOf(key);
        if (dictionary && name && value)
            CFDictionarySetValue(dictionary.get(), name.get(), value);
    }

    Owned<CFMutableDictionaryRef> dictionary;
};

bool isSet(const std::string& path) {
    return Sysfs::readNumber(path).value_or(0) != 0;
}

/// What a folder of a device says under the first of these names.
std::string firstOf(const std::string& folder, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (auto text = Sysfs::read(folder + name); text && !text->empty())
            return *text;
    }
    return {};
}

/// How a disk is reached, by the names in its path.
const char* protocolOf(const std::string& folder) {
    struct Rule {
        const char* part;
        const char* protocol;
    };
    static constexpr Rule rules[] = {
        {"/usb", "USB"},
        {"/ata", "SATA"},
        {"/nvme", "NVMe"},
        {"/mmc_host", "SD/MMC"},
        {"/virtio", "Virtio"},
        {"/host", "SCSI"},
        {"/virtual/", "Virtual Interface"},
    };
    for (const Rule& rule : rules) {
        if (folder.find(rule.part) != std::string::npos)
            return rule.protocol;
    }
    return "";
}

void addMedium(Description& description, const DiskNode& node, const std::string& own,
               const std::string& whole) {
    const bool isRemovable = isSet(whole + "/removable");
    const std::string events = Sysfs::read(whole + "/events").value_or("");
    description.text("DAMediaBSDName", node.name());
    description.number("DAMediaBSDMajor", node.major);
    description.number("DAMediaBSDMinor", node.minor);
    description.number("DAMediaBSDUnit", node.disk);
    description.number("DAMediaBlockSize",
                       Sysfs::readNumber(whole + "/queue/logical_block_size").value_or(sectorSize));
    description.number("DAMediaSize", Sysfs::readNumber(own + "/size").value_or(0) * sectorSize);
    description.text("DAMediaPath", own);
    description.text("DAMediaKind", "IOMedia");
    description.flag("DAMediaWhole", node.slice == 0);
    description.flag("DAMediaWritable", !isSet(own + "/ro"));
    description.flag("DAMediaRemovable", isRemovable);
    description.flag("DAMediaEjectable",
                     isRemovable || events.find("eject_request") != std::string::npos);
}

void addDevice(Description& description, const std::string& whole) {
    const std::string device = whole + "/device";
    const std::vector<std::string> chain = ancestry(whole);
    const bool isPhysical = access(device.c_str(), F_OK) == 0;
    const std::string protocol = protocolOf(whole);
    description.text("DADeviceProtocol", protocol);
    description.flag("DADeviceInternal",
                     isPhysical && protocol != "USB" && !isSet(whole + "/removable"));
    if (!isPhysical)
        return;
    description.text("DADeviceModel", firstOf(device, {"/model", "/name"}));
    description.text("DADeviceRevision", firstOf(device, {"/rev", "/firmware_rev", "/fwrev"}));
    if (chain.size() > 1)
        description.text("DADevicePath", chain[1]);
    if (chain.size() > 2) {
        description.text("DABusPath", chain[2]);
        description.text("DABusName", chain[2].substr(chain[2].rfind('/') + 1));
    }
}

void addContents(Description& description, const DiskNode& node, const MediumContents& contents,
                 const std::string& own, const std::string& whole) {
    const std::string model = firstOf(whole, {"/device/model", "/device/name"});
    const std::string event = Sysfs::read(own + "/uevent").value_or("");
    const std::string partition(Sysfs::field(event, "PARTNAME"));
    description.text("DAMediaName", node.slice == 0 ? model : partition);
    const std::string& use = node.slice == 0 ? contents.tableType : contents.partitionType;
    description.text("DAMediaContent", use.empty() ? contents.type : use);
    description.text("DAVolumeName", contents.label);
    description.text("DAVolumeUUID", contents.uuid);
    description.text("DAVolumeKind", contents.isFileSystem ? contents.type : std::string());
    description.flag("DAVolumeMountable", contents.isFileSystem);
    description.flag("DAVolumeNetwork", false);
}

/// Whether a disk has no slices.
bool isLeaf(const DiskNode& node) {
    return node.slice != 0 || BlockDevices().partitions(node.systemName).empty();
}

} // namespace

CFDictionaryRef describeDisk(const DiskNode& node) {
    const TerminationDeferred untilGivenBack;
    const std::string own = deviceFolder(node);
    const std::string whole = diskFolder(node);
    if (own.empty())
        return nullptr;
    const std::vector<Mount> mounted = mountsOf(node, mounts());
    const Mount* const mount = mounted.empty() ? nullptr : &mounted.front();
    Description description;
    addMedium(description, node, own, whole);
    addDevice(description, whole);
    addContents(description, node, contentsOf(node, mount), own, whole);
    description.flag("DAMediaLeaf", isLeaf(node));
    if (mount)
        description.path("DAVolumePath", mount->target);
    return description.release();
}

} // namespace Korvex
