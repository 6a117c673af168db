#include "platform/linux/mounts.h"

#include "platform/linux/mountlibrary.h"
#include "platform/scopes.h"

#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace Korvex {

namespace {

std::string textOf(const char* text) {
    return text ? text : "";
}

Mount mountOf(const MountLibrary& library, libmnt_fs* entry) {
    Mount mount;
    const dev_t device = library.device(entry);
    mount.id = library.id(entry);
    mount.major = major(device);
    mount.minor = minor(device);
    mount.target = textOf(library.target(entry));
    mount.source = textOf(library.source(entry));
    mount.type = textOf(library.type(entry));
    mount.isNetworked = library.isNetwork(entry) != 0;
    const std::string options = ',' + textOf(library.options(entry)) + ',';
    mount.isReadOnly = options.find(",ro,") != std::string::npos;
    return mount;
}

/// The device that a path is, where it is one. Sources of networks are never looked at: they could
/// be files in the current folder.
std::optional<DiskNode> nodeAt(const std::string& path) {
    struct stat status {};
    if (!path.starts_with("/dev/") || stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode))
        return std::nullopt;
    return diskNodeOfDevice(major(status.st_rdev), minor(status.st_rdev));
}

} // namespace

std::optional<DiskNode> Mount::node() const {
    if (isNetworked)
        return std::nullopt;
    if (major != 0)
        return diskNodeOfDevice(major, minor);
    return nodeAt(source); // one that can span several devices has a number of its own
}

std::vector<Mount> mounts() {
    const ErrorNumberKept meanwhile;
    const TerminationDeferred untilGivenBack; // what the library has opened
    std::vector<Mount> found;
    const MountLibrary* const library = MountLibrary::loaded();
    if (!library)
        return found;
    const std::unique_ptr<libmnt_table, void (*)(libmnt_table*)> table(library->newTable(),
                                                                       library->unrefTable);
    const std::unique_ptr<libmnt_iter, void (*)(libmnt_iter*)> iterator(
        library->newIterator(MNT_ITER_FORWARD), library->freeIterator);
    if (!table || !iterator || library->parseFile(table.get(), "/proc/self/mountinfo") != 0)
        return found;
    libmnt_fs* entry = nullptr;
    while (library->next(table.get(), iterator.get(), &entry) == 0)
        found.push_back(mountOf(*library, entry));
    return found;
}

std::vector<Mount> mountsOf(const DiskNode& node, const std::vector<Mount>& all) {
    std::vector<Mount> found;
    for (const Mount& mount : all) {
        const bool isIt = mount.major != 0 ? mount.major == node.major && mount.minor == node.minor
                                           : mount.source == node.path && !mount.isNetworked;
        if (isIt)
            found.push_back(mount);
    }
    return found;
}

} // namespace Korvex
