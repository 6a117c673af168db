#include "commands.h"
#include "failure.h"
#include "mountcontext.h"
#include "platform/linux/volumefolder.h"
#include "signals.h"
#include "target.h"
#include "text.h"

#include <cstdio>
#include <unistd.h>

namespace DiskUtil {

namespace {

namespace VolumeFolder = Korvex::VolumeFolder;

void requireRoot() {
    if (geteuid() != 0)
        throw Failure("only root can do this");
}

void mountAtVolumes(const Volume& volume) {
    const std::string name = volume.name();
    const std::string folder = VolumeFolder::make(name.empty() ? volume.node.name() : name);
    if (folder.empty())
        throw systemFailure("no folder for " + volume.shown());
    try {
        mountNow({volume.node.path, folder, {}, VolumeFolder::mountOptions});
    } catch (const std::exception&) {
        VolumeFolder::remove(folder);
        throw;
    }
    std::printf("%s mounted at %s\n", volume.shown().c_str(), printable(folder).c_str());
}

void mountOne(const Volume& volume) {
    if (volume.isMounted())
        std::printf("%s is mounted already\n", volume.shown().c_str());
    else if (!volume.contents.isFileSystem)
        throw Failure(volume.shown() + " holds no file system");
    else
        mountAtVolumes(volume);
}

void unmountOne(const Volume& volume) {
    if (!volume.isMounted())
        std::printf("%s is not mounted\n", volume.shown().c_str());
    // The last one first: a mount may lie inside an earlier one.
    for (auto mount = volume.mounts.rbegin(); mount != volume.mounts.rend(); ++mount) {
        unmountNow(mount->target);
        VolumeFolder::remove(mount->target);
        std::printf("%s unmounted from %s\n", volume.shown().c_str(),
                    printable(mount->target).c_str());
    }
}

/// Does something with every volume that it can be done with. What goes wrong with one does not
/// keep the others from their turn.
void withEach(const std::vector<Volume>& volumes, void (*operation)(const Volume&)) {
    std::string failures;
    for (const Volume& volume : volumes) {
        try {
            operation(volume);
        } catch (const Failure& failure) {
            failures += (failures.empty() ? "" : "; ") + std::string(failure.what());
        }
    }
    if (!failures.empty())
        throw Failure(failures);
}

} // namespace

void mountVolume(const Operands& operands) {
    requireRoot();
    const SignalsBlocked untilDone;
    mountOne(volumeNamed(operands[0]));
}

void unmountVolume(const Operands& operands) {
    requireRoot();
    const SignalsBlocked untilDone;
    unmountOne(volumeNamed(operands[0]));
}

void mountDisk(const Operands& operands) {
    requireRoot();
    const Volume named = volumeNamed(operands[0]);
    std::vector<Volume> volumes = volumesOfDisk(named.node);
    std::erase_if(volumes, [](const Volume& each) { return !each.contents.isFileSystem; });
    if (volumes.empty())
        throw Failure("disk" + std::to_string(named.node.disk) + " holds no file system");
    const SignalsBlocked untilDone;
    withEach(volumes, mountOne);
}

void unmountDisk(const Operands& operands) {
    requireRoot();
    const Volume named = volumeNamed(operands[0]);
    std::vector<Volume> volumes = volumesOfDisk(named.node);
    std::erase_if(volumes, [](const Volume& each) { return !each.isMounted(); });
    if (volumes.empty())
        std::printf("nothing of disk%u is mounted\n", named.node.disk);
    const SignalsBlocked untilDone;
    withEach(volumes, unmountOne);
}

} // namespace DiskUtil
