#include "resizing.h"

#include "failure.h"
#include "size.h"
#include "takenoff.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace DiskUtil {

namespace {

/// Throws when someone has the device for himself: a mount that is not seen from here, or a device
/// made of it.
void requireUnused(const Korvex::DiskNode& node) {
    const Korvex::Descriptor device(open(node.path.c_str(), O_RDONLY | O_EXCL | O_CLOEXEC));
    if (!device.isOpen())
        throw systemFailure(node.path + " cannot be changed now");
}

} // namespace

Resizing::Resizing(const Volume& ofVolume) : volume(ofVolume), fileSystem(volume.node.path) {
    if (volume.node.slice == 0)
        return;
    partition.emplace(volume.node);
    entry.emplace(volume.node, partition->start());
    if (!entry->isThere())
        entry.reset();
}

unsigned long long Resizing::minimumSize() const {
    return std::min(fileSystem.minimumSize(), fileSystem.size());
}

unsigned long long Resizing::maximumSize() const {
    const unsigned long long now = sizeOf(volume.node);
    if (!entry)
        return now;
    const unsigned long long room = partition->endOfRoom() - partition->start();
    return std::max(now, std::min(entry->largestSize(), room));
}

void Resizing::resize(unsigned long long bytes) {
    reserveDisk();
    if (!volume.isMounted())
        checkUnused(); // work that was interrupted shows here
    if (const unsigned long long least = minimumSize(); bytes < least)
        throw Failure(volume.shown() + " needs at least " + shownSize(least) + " for its data");
    if (const unsigned long long most = maximumSize(); bytes > most)
        throw Failure(volume.shown() + " has room for at most " + shownSize(most));
    const unsigned long long blocks = fileSystem.wholeBlocks(bytes);
    growPartition(bytes);
    const bool isDone =
        blocks == fileSystem.size() || (blocks > fileSystem.size() && growMounted(bytes));
    if (!isDone)
        resizeTakenOff(bytes);
    shrinkPartition(bytes);
}

/// Others that heed such locks, this program included, leave the disk alone meanwhile.
void Resizing::reserveDisk() {
    const std::string path = wholeOf(volume.node).path;
    reserved.reset(open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!reserved.isOpen())
        throw systemFailure(path + " cannot be changed");
    if (flock(reserved.get(), LOCK_EX | LOCK_NB) != 0)
        throw Failure("someone else is changing " + path);
}

void Resizing::growPartition(unsigned long long bytes) {
    const unsigned long long before = partition ? partition->size() : 0;
    if (!entry || bytes <= before)
        return;
    // The kernel first: it refuses what touches another slice.
    partition->resize(entry->wholeSectors(bytes));
    try {
        entry->resize(bytes);
    } catch (const Failure&) {
        partition->resize(before);
        throw;
    }
}

void Resizing::shrinkPartition(unsigned long long bytes) {
    const unsigned long long needed = std::max(bytes, fileSystem.size());
    if (!entry || entry->wholeSectors(needed) >= partition->size())
        return;
    entry->resize(needed);
    partition->resize(entry->wholeSectors(needed));
}

bool Resizing::growMounted(unsigned long long bytes) {
    if (!volume.isMounted() || volume.contents.type == "ext2" || volume.mounts.front().isReadOnly)
        return false;
    try {
        fileSystem.resize(bytes);
        return true;
    } catch (const Failure&) { // not every system and file system can
        return false;
    }
}

void Resizing::resizeTakenOff(unsigned long long bytes) {
    TakenOff off(volume.node);
    if (volume.isMounted())
        checkUnused();
    try {
        fileSystem.resize(bytes);
    } catch (const Failure&) {
        mend();
        throw;
    }
    off.putBack();
}

void Resizing::checkUnused() const {
    requireUnused(volume.node);
    fileSystem.check();
}

/// Lets a file system that could not be resized be mounted again.
void Resizing::mend() const {
    try {
        fileSystem.check();
    } catch (const Failure&) { // what went wrong first is told
    }
}

} // namespace DiskUtil
