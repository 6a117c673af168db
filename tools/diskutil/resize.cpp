#include "commands.h"
#include "failure.h"
#include "resizing.h"
#include "signals.h"
#include "size.h"
#include "target.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace DiskUtil {

namespace {

/// What a mounted volume still holds in memory is written, for its programs to see.
void writeOut(const Volume& volume) {
    for (const Korvex::Mount& mount : volume.mounts) {
        const Korvex::Descriptor root(
            open(mount.target.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (root.isOpen())
            syncfs(root.get());
    }
}

Volume resizable(const std::string& name) {
    Volume volume = volumeNamed(name);
    if (volume.contents.type.empty())
        throw Failure(volume.shown() + " holds no file system");
    if (!ExtFileSystem::isOne(volume.contents.type))
        throw Failure(volume.shown() + " cannot be resized: its file system is " +
                      volume.contents.type + ", and only ext2, ext3 and ext4 can be resized");
    writeOut(volume);
    return volume;
}

void showLimits(const Resizing& resizing) {
    // Programs read the numbers in parentheses, in this order.
    std::printf("Current size:  %s\n", shownSize(resizing.size()).c_str());
    std::printf("Minimum size:  %s\n", shownSize(resizing.minimumSize()).c_str());
    std::printf("Maximum size:  %s\n", shownSize(resizing.maximumSize()).c_str());
}

} // namespace

void resizeVolume(const Operands& operands) {
    const bool isQuestion = operands[1] == "limits";
    const unsigned long long size = isQuestion ? 0 : parseSize(operands[1]);
    const Volume volume = resizable(operands[0]);
    Resizing resizing(volume);
    if (isQuestion) {
        showLimits(resizing);
        return;
    }
    const SignalsBlocked untilDone;
    resizing.resize(size);
    std::printf("%s now has a size of %s\n", volume.shown().c_str(),
                shownSize(resizing.size()).c_str());
}

} // namespace DiskUtil
