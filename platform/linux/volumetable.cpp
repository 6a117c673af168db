#include "platform/volumetable.h"

#include "platform/linux/disknumberstore.h"
#include "platform/linux/mediumcontents.h"
#include "platform/linux/mounts.h"
#include "platform/replaceable.h"
#include "platform/scopes.h"

#include <QByteArrayView>
#include <QStringDecoder>

#include <fcntl.h>
#include <map>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <tuple>

namespace Korvex {

namespace {

constexpr int longestName = 255;
constexpr unsigned uniqueMountId = 0x4000; // STATX_MNT_ID_UNIQUE, newer than some headers

/// Labels and folders are UTF-8 by custom; the bytes of others are Latin-1.
QString textOf(const std::string& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? QString::fromLatin1(bytes.c_str()) : text;
}

QString nameOf(const Mount& mount, const std::string& label) {
    std::string name = label;
    if (name.empty())
        name = mount.target.substr(mount.target.rfind('/') + 1);
    if (name.empty())
        name = mount.target; // the root
    return textOf(name).left(longestName);
}

Volume volumeOf(const Mount& mount, const DiskNode* node) {
    Volume volume;
    volume.reference = -mount.id;
    volume.root = mount.target;
    volume.backing.isNetworked = mount.isNetworked;
    if (node)
        volume.backing.device = node->name();
    volume.name = nameOf(mount, node ? contentsOf(*node, &mount).label : std::string());
    return volume;
}

/// What was found out about mounts before: none of them ever changes its device.
class KnownMounts {
public:
    std::optional<VolumeBacking> find(unsigned long long mountId) {
        const auto current = diskNumberStore().stored();
        const std::lock_guard guard(mutex);
        if (current != numbers)
            return std::nullopt;
        const auto found = backings.find(mountId);
        return found == backings.end() ? std::nullopt : std::optional(found->second);
    }

    void add(unsigned long long mountId, const VolumeBacking& backing) {
        constexpr std::size_t enough = 1024;
        const auto current = diskNumberStore().stored();
        const std::lock_guard guard(mutex);
        if (current != numbers || backings.size() >= enough)
            backings.clear();
        numbers = current;
        backings[mountId] = backing;
    }

private:
    std::mutex mutex;                           // guards what follows
    std::shared_ptr<const DiskNumbers> numbers; // that the names were made with
    std::map<unsigned long long, VolumeBacking> backings;
};

KnownMounts& knownMounts() {
    static auto* const known = new KnownMounts;
    return *known;
}

/// Nothing is asked of a server for this, and nothing is mounted.
bool ask(const char* path, unsigned mask, struct statx& status) {
    return statx(AT_FDCWD, path, AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, mask, &status) == 0;
}

VolumeBacking backingOf(const Mount& mount) {
    VolumeBacking backing;
    backing.isNetworked = mount.isNetworked;
    if (const auto node = mount.node())
        backing.device = node->name();
    return backing;
}

VolumeBacking find(const char* path, const struct statx& status) {
    VolumeBacking backing;
    if (status.stx_dev_major != 0) {
        if (const auto node = diskNodeOfDevice(status.stx_dev_major, status.stx_dev_minor)) {
            backing.device = node->name();
            return backing;
        }
    }
    struct statx withId {};
    if (!ask(path, STATX_MNT_ID, withId))
        return backing;
    for (const Mount& mount : mounts()) {
        if (static_cast<unsigned long long>(mount.id) == withId.stx_mnt_id)
            return backingOf(mount);
    }
    return backing;
}

class LinuxVolumeTable final : public VolumeTable {
public:
    std::vector<Volume> volumes() override {
        const ErrorNumberKept meanwhile;
        std::vector<Volume> found;
        std::set<std::tuple<unsigned, unsigned>> seen;
        for (const Mount& mount : mounts()) {
            const std::optional<DiskNode> node = mount.node();
            const auto device =
                node ? std::tuple(node->major, node->minor) : std::tuple(mount.major, mount.minor);
            if ((node || mount.isNetworked) && seen.insert(device).second)
                found.push_back(volumeOf(mount, node ? &*node : nullptr));
        }
        return found;
    }

    std::optional<Place> placeOf(const char* path) override {
        const ErrorNumberKept meanwhile;
        struct statx status {};
        if (!ask(path, uniqueMountId, status))
            return std::nullopt;
        const bool isUnique = (status.stx_mask & uniqueMountId) != 0;
        if (isUnique) {
            if (const auto known = knownMounts().find(status.stx_mnt_id))
                return Place{0, *known};
        }
        const VolumeBacking backing = find(path, status);
        if (isUnique && (backing.isNetworked || !backing.device.empty()))
            knownMounts().add(status.stx_mnt_id, backing);
        return Place{0, backing};
    }
};

} // namespace

VolumeTable& volumeTable() {
    static auto* const table = new LinuxVolumeTable;
    return inForce<VolumeTable>(*table);
}

} // namespace Korvex
