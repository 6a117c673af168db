#include "platform/linux/mediumcontents.h"
#include "platform/linux/mountlibrary.h"
#include "platform/linux/mounts.h"
#include "platform/linux/volumefolder.h"
#include "platform/linux/volumemounter.h"

#include <cerrno>
#include <memory>

namespace Korvex {

namespace {

DAReturn statusOf(int error) {
    switch (error) {
    case EBUSY:
        return kDAReturnBusy;
    case EPERM:
    case EACCES:
        return kDAReturnNotPrivileged;
    case ENOENT:
    case ENOTDIR:
    case ENXIO:
        return kDAReturnNotFound;
    case EROFS:
        return kDAReturnNotWritable;
    case ENOMEM:
        return kDAReturnNoResources;
    case ENOMEDIUM:
        return kDAReturnNotReady;
    case ENODEV: // a type that the kernel does not know
    case EINVAL: // nothing that it knows
    case MNT_ERR_NOFSTYPE:
        return kDAReturnUnsupported;
    default:
        return kDAReturnError;
    }
}

using Context = std::unique_ptr<libmnt_context, void (*)(libmnt_context*)>;

/// What became of an operation, which a helper program may have done.
DAReturn resultOf(const MountLibrary& library, const Context& context, int result) {
    if (result == 0 && library.status(context.get()) == 1)
        return kDAReturnSuccess;
    if (library.syscallCalled(context.get()))
        return statusOf(library.syscallError(context.get()));
    return statusOf(result < 0 ? -result : result);
}

/// Sets an operation up and does it. \return Its result.
template <class Prepare, class Operation>
DAReturn perform(Prepare prepare, Operation operation) {
    const MountLibrary* const library = MountLibrary::loaded();
    if (!library)
        return kDAReturnUnsupported;
    const Context context(library->newContext(), library->freeContext);
    if (!context || prepare(*library, context.get()) != 0)
        return kDAReturnNoResources;
    return resultOf(*library, context, operation(*library, context.get()));
}

DAReturn mountAt(const DiskNode& node, const std::string& target, const char* options) {
    return perform(
        [&](const MountLibrary& library, libmnt_context* context) {
            return library.setSource(context, node.path.c_str()) |
                   library.setTarget(context, target.c_str()) |
                   library.setOptions(context, options);
        },
        [](const MountLibrary& library, libmnt_context* context) {
            return library.mount(context);
        });
}

DAReturn unmountAt(const std::string& target, bool force) {
    return perform(
        [&](const MountLibrary& library, libmnt_context* context) {
            return library.setTarget(context, target.c_str()) |
                   library.enableForce(context, force ? 1 : 0);
        },
        [](const MountLibrary& library, libmnt_context* context) {
            return library.unmount(context);
        });
}

class DirectMounter final : public VolumeMounter {
public:
    DAReturn mount(const DiskNode& node, const std::string& target) override {
        if (!mountsOf(node, mounts()).empty())
            return kDAReturnBusy;
        if (!target.empty())
            return mountAt(node, target, nullptr);
        const std::string label = contentsOf(node, nullptr).label;
        const std::string folder = VolumeFolder::make(label.empty() ? node.name() : label);
        if (folder.empty())
            return statusOf(errno);
        const DAReturn result = mountAt(node, folder, VolumeFolder::mountOptions);
        if (result != kDAReturnSuccess)
            VolumeFolder::remove(folder);
        return result;
    }

    DAReturn unmount(const DiskNode& node, bool force) override {
        std::vector<Mount> own = mountsOf(node, mounts());
        if (own.empty())
            return kDAReturnNotMounted;
        // The last one first: a mount may lie inside an earlier one.
        for (; !own.empty(); own.pop_back()) {
            const std::string& target = own.back().target;
            if (const DAReturn result = unmountAt(target, force); result != kDAReturnSuccess)
                return result;
            VolumeFolder::remove(target);
        }
        return kDAReturnSuccess;
    }
};

} // namespace

VolumeMounter& directMounter() {
    static DirectMounter mounter;
    return mounter;
}

} // namespace Korvex
