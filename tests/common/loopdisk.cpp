#include "common/loopdisk.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/blkpg.h>
#include <linux/fs.h>
#include <linux/loop.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KxTest {

namespace {

/// A lock of the machine, which a process has until all its disks are gone.
class Turn {
public:
    Turn() : descriptor(open("/dev/loop-control", O_RDWR | O_CLOEXEC)) {
        while (descriptor >= 0 && flock(descriptor, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~Turn() {
        if (descriptor >= 0)
            close(descriptor);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    const int descriptor;
};

std::shared_ptr<Turn> takeTurn() {
    static std::weak_ptr<Turn> present;
    std::shared_ptr<Turn> turn = present.lock();
    if (!turn)
        present = turn = std::make_shared<Turn>();
    return turn;
}

} // namespace

LoopDisk::LoopDisk(unsigned long long bytes) : turn(takeTurn()) {
    const int medium = memfd_create("medium", MFD_CLOEXEC);
    if (medium < 0 || ftruncate(medium, static_cast<off_t>(bytes)) != 0)
        return;
    // Others may take the same free drive at the same time.
    for (int tries = 0; tries < 100 && !attach(medium); ++tries) {
    }
    close(medium);
}

bool LoopDisk::attach(int medium) {
    const int control = open("/dev/loop-control", O_RDWR | O_CLOEXEC);
    const int number = control < 0 ? -1 : ioctl(control, LOOP_CTL_GET_FREE);
    close(control);
    if (number < 0)
        return true;
    name = "loop" + std::to_string(number);
    descriptor = open(path().c_str(), O_RDWR | O_CLOEXEC);
    loop_config config{};
    config.fd = static_cast<unsigned>(medium);
    // Cleared when nobody uses it any more, partitions included.
    config.info.lo_flags = LO_FLAGS_AUTOCLEAR | LO_FLAGS_PARTSCAN;
    if (descriptor >= 0 && ioctl(descriptor, LOOP_CONFIGURE, &config) == 0)
        return true;
    const bool isTaken = errno == EBUSY;
    close(descriptor);
    descriptor = -1;
    return !isTaken;
}

LoopDisk::~LoopDisk() {
    detach();
}

void LoopDisk::detach() {
    if (descriptor < 0)
        return;
    for (unsigned number = 1; number <= 16; ++number)
        removePartition(number);
    ioctl(descriptor, LOOP_CLR_FD);
    close(descriptor);
    descriptor = -1;
}

bool LoopDisk::isPossible() {
    const int control = geteuid() == 0 ? open("/dev/loop-control", O_RDWR | O_CLOEXEC) : -1;
    const bool mayAttach = control >= 0;
    close(control);
    return mayAttach;
}

std::string LoopDisk::partitionPath(unsigned number) const {
    return path() + 'p' + std::to_string(number);
}

bool LoopDisk::addPartition(unsigned number, unsigned long long start,
                            unsigned long long length) const {
    blkpg_partition partition{};
    partition.start = static_cast<long long>(start);
    partition.length = static_cast<long long>(length);
    partition.pno = static_cast<int>(number);
    blkpg_ioctl_arg argument{BLKPG_ADD_PARTITION, 0, sizeof partition, &partition};
    return ioctl(descriptor, BLKPG, &argument) == 0 &&
           access(partitionPath(number).c_str(), F_OK) == 0;
}

void LoopDisk::removePartition(unsigned number) const {
    blkpg_partition partition{};
    partition.pno = static_cast<int>(number);
    blkpg_ioctl_arg argument{BLKPG_DEL_PARTITION, 0, sizeof partition, &partition};
    ioctl(descriptor, BLKPG, &argument);
}

bool LoopDisk::write(unsigned long long place, const void* bytes, unsigned long size) const {
    return pwrite(descriptor, bytes, size, static_cast<off_t>(place)) == static_cast<ssize_t>(size);
}

bool makeFileSystem(const std::string& path, const std::string& label, const std::string& options) {
    const std::string command =
        "/sbin/mkfs.ext4 -q -F " + options + " -L '" + label + "' " + path + " 2>&1";
    return std::system(command.c_str()) == 0;
}

Mounted::Mounted(const std::string& source, std::string onFolder, const char* type,
                 unsigned long flags, const char* data)
    : place(std::move(onFolder)),
      mounted((mkdir(place.c_str(), 0755) == 0 || errno == EEXIST) &&
              mount(source.c_str(), place.c_str(), type, flags, data) == 0) {}

Mounted::~Mounted() {
    if (mounted)
        umount2(place.c_str(), MNT_DETACH);
    rmdir(place.c_str());
}

} // namespace KxTest
