#include "platform/diskarbiter.h"

#include "platform/linux/arbiterthread.h"
#include "platform/linux/diskdescription.h"
#include "platform/linux/mediumcontents.h"
#include "platform/linux/volumemounter.h"
#include "platform/referencecounted.h"
#include "platform/replaceable.h"
#include "platform/scopes.h"

#include <array>
#include <climits>
#include <functional>
#include <new>
#include <unistd.h>

namespace Korvex {

VolumeMounter& volumeMounter() {
    return geteuid() == 0 ? directMounter() : serviceMounter();
}

namespace {

/// The disks and slices that an operation on one of them is meant for.
std::vector<DiskNode> affected(const DiskNode& node, unsigned long options) {
    if ((options & kDADiskMountOptionWhole) == 0)
        return {node};
    std::vector<DiskNode> nodes = diskNodes();
    std::erase_if(nodes, [&](const DiskNode& other) {
        return other.disk != node.disk || other.sequence != node.sequence;
    });
    return nodes;
}

DAReturn mountAll(const std::vector<DiskNode>& nodes) {
    const std::vector<Mount> mounted = mounts();
    DAReturn result = kDAReturnUnsupported; // nothing there that can be mounted
    for (const DiskNode& node : nodes) {
        if (!mountsOf(node, mounted).empty() || !contentsOf(node, nullptr).isFileSystem)
            continue;
        const DAReturn one = volumeMounter().mount(node, {});
        if (result == kDAReturnSuccess || result == kDAReturnUnsupported)
            result = one;
    }
    return result;
}

DAReturn unmountAll(const std::vector<DiskNode>& nodes, bool force) {
    const std::vector<Mount> mounted = mounts();
    DAReturn result = kDAReturnSuccess;
    for (const DiskNode& node : nodes) {
        if (mountsOf(node, mounted).empty())
            continue;
        const DAReturn one = volumeMounter().unmount(node, force);
        if (result == kDAReturnSuccess)
            result = one;
    }
    return result;
}

class LinuxDisk final : public ReferenceCounted<__DADisk> {
public:
    explicit LinuxDisk(DiskNode ofNode) : node(std::move(ofNode)) {}

    CFDictionaryRef copyDescription() override {
        const ErrorNumberKept meanwhile;
        return isThere() ? describeDisk(node) : nullptr;
    }

    void mount(CFURLRef path, unsigned long options, DADiskCallback callback,
               void* context) override {
        std::array<UInt8, PATH_MAX> bytes{};
        const bool isReadable =
            !path || CFURLGetFileSystemRepresentation(path, true, bytes.data(),
                                                      static_cast<CFIndex>(bytes.size()));
        start(callback, context, [=, this, target = std::string(asText(bytes))]() -> DAReturn {
            if (!isReadable)
                return kDAReturnBadArgument;
            return (options & kDADiskMountOptionWhole) != 0 ? mountAll(affected(node, options))
                                                            : volumeMounter().mount(node, target);
        });
    }

    void unmount(unsigned long options, DADiskCallback callback, void* context) override {
        start(callback, context, [=, this] {
            const bool force = (options & kDADiskUnmountOptionForce) != 0;
            return (options & kDADiskUnmountOptionWhole) != 0
                       ? unmountAll(affected(node, options), force)
                       : volumeMounter().unmount(node, force);
        });
    }

    // Nothing here reserves disks.
    void unclaim() override {}

private:
    ~LinuxDisk() override = default;

    static const char* asText(const std::array<UInt8, PATH_MAX>& bytes) {
        return reinterpret_cast<const char*>(bytes.data());
    }

    /// Whether the disk of the name is still the one that it was.
    [[nodiscard]] bool isThere() const {
        const auto current = diskNode(node.name());
        return current && current->sequence == node.sequence && current->path == node.path;
    }

    /// Has an operation done and tells what became of it. The disk lives until then.
    void start(DADiskCallback callback, void* context, const std::function<DAReturn()>& operation) {
        const ErrorNumberKept meanwhile;
        retain();
        try {
            ArbiterThread::instance().run([=, this] {
                finish(callback, context, isThere() ? operation() : DAReturn{kDAReturnNotFound});
            });
        } catch (const std::bad_alloc&) {
            finish(callback, context, kDAReturnNoResources);
        }
    }

    void finish(DADiskCallback callback, void* context, DAReturn status) {
        const __DADissenter dissenter{status};
        if (callback)
            callback(this, status == kDAReturnSuccess ? nullptr : &dissenter, context);
        release();
    }

    const DiskNode node;
};

class LinuxSession final : public ReferenceCounted<__DASession> {
public:
    __DADisk* createDisk(const char* name) override {
        auto node = diskNode(name);
        return node ? new (std::nothrow) LinuxDisk(std::move(*node)) : nullptr;
    }

private:
    ~LinuxSession() override = default;
};

class LinuxArbiter final : public DiskArbiter {
public:
    __DASession* createSession() override { return new (std::nothrow) LinuxSession; }
};

} // namespace

DiskArbiter& diskArbiter() {
    static LinuxArbiter arbiter;
    return inForce<DiskArbiter>(arbiter);
}

} // namespace Korvex
