#include "platform/linux/mediumcontents.h"

#include "platform/descriptor.h"
#include "platform/linux/blkidlibrary.h"
#include "platform/linux/udevrecord.h"

#include <array>
#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <sys/ioctl.h>

namespace Korvex {

namespace {

MediumContents fromRecord(const UdevRecord& record) {
    MediumContents contents;
    contents.label = record.property("ID_FS_LABEL_ENC");
    contents.uuid = record.property("ID_FS_UUID_ENC");
    contents.type = record.property("ID_FS_TYPE");
    contents.tableType = record.property("ID_PART_TABLE_TYPE");
    contents.partitionType = record.property("ID_PART_ENTRY_TYPE");
    contents.isFileSystem = record.property("ID_FS_USAGE") == "filesystem";
    return contents;
}

using Probe = std::unique_ptr<blkid_struct_probe, decltype(&::blkid_free_probe)>;

std::string value(const BlkidLibrary& blkid, const Probe& probe, const char* name) {
    const char* data = nullptr;
    return blkid.lookUp(probe.get(), name, &data, nullptr) == 0 && data ? data : "";
}

/// Looks for one kind only where that is known: much less is read then.
void restrictTo(const BlkidLibrary& blkid, const Probe& probe, const std::string& type) {
    if (type.empty() || type == "fuseblk")
        return;
    std::array<char*, 4> types{const_cast<char*>(type.c_str())};
    if (type.starts_with("ext")) // one driver mounts them all
        types = {const_cast<char*>("ext2"), const_cast<char*>("ext3"), const_cast<char*>("ext4")};
    blkid.filterSuperblocks(probe.get(), BLKID_FLTR_ONLYIN, types.data());
}

MediumContents fromMedium(const BlkidLibrary& blkid, const Probe& probe) {
    MediumContents contents;
    contents.label = value(blkid, probe, "LABEL");
    contents.uuid = value(blkid, probe, "UUID");
    contents.type = value(blkid, probe, "TYPE");
    contents.tableType = value(blkid, probe, "PTTYPE");
    contents.partitionType = value(blkid, probe, "PART_ENTRY_TYPE");
    contents.isFileSystem = value(blkid, probe, "USAGE") == "filesystem";
    return contents;
}

MediumContents probed(const Descriptor& device, const DiskNode& node, const Mount* mount) {
    const BlkidLibrary* const blkid = BlkidLibrary::loaded();
    if (!blkid)
        return {};
    const Probe probe(blkid->newProbe(), blkid->freeProbe);
    if (!probe || blkid->setDevice(probe.get(), device.get(), 0, 0) != 0)
        return {};
    blkid->setSuperblocksFlags(probe.get(), BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID |
                                                BLKID_SUBLKS_TYPE | BLKID_SUBLKS_USAGE);
    if (mount)
        restrictTo(*blkid, probe, mount->type);
    else
        blkid->enablePartitions(probe.get(), 1);
    if (!mount && node.slice != 0)
        blkid->setPartitionsFlags(probe.get(), BLKID_PARTS_ENTRY_DETAILS);
    blkid->probe(probe.get());
    return fromMedium(*blkid, probe);
}

/// What a mounted file system says to everyone who can reach it.
std::string labelOf(const Mount& mount) {
    std::array<char, FSLABEL_MAX> label{};
    const Descriptor root(open(mount.target.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!root.isOpen() || ioctl(root.get(), FS_IOC_GETFSLABEL, label.data()) != 0)
        return {};
    label.back() = '\0';
    return label.data();
}

} // namespace

MediumContents contentsOf(const DiskNode& node, const Mount* mount) {
    const ErrorNumberKept meanwhile;
    const TerminationDeferred untilGivenBack; // what the library has opened
    MediumContents contents;
    if (const Descriptor device(open(node.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        device.isOpen())
        contents = probed(device, node, mount);
    else if (const std::optional<UdevRecord> record = UdevRecord::of(node))
        contents = fromRecord(*record);
    if (!mount)
        return contents;
    contents.isFileSystem = true;
    if (contents.type.empty())
        contents.type = mount->type;
    if (contents.label.empty())
        contents.label = labelOf(*mount);
    return contents;
}

} // namespace Korvex
