#include "platform/linux/disknumberstore.h"

#include "platform/linux/sysfs.h"
#include "platform/runtimefolder.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Korvex {

namespace {

constexpr char fileName[] = "/disks";
constexpr char newFileName[] = "/disks.new";
constexpr char lockName[] = "/disks.lock";

/// Tells the runs of the machine apart, for folders that outlive one.
const std::string& thisBoot() {
    static const auto* const boot =
        new std::string(Sysfs::read("/proc/sys/kernel/random/boot_id").value_or("-"));
    return *boot;
}

std::string contentsOf(const std::string& path) {
    std::string contents;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return contents;
    contents.resize(static_cast<std::size_t>(status.st_size));
    const ssize_t got = read(file.get(), contents.data(), contents.size());
    contents.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return contents;
}

/// Readable for everyone whatever the process's mask.
bool makeFolder(const std::string& path) {
    std::error_code error;
    if (fs::create_directories(path, error))
        fs::permissions(path, fs::perms(0755), error);
    return fs::is_directory(path, error);
}

} // namespace

std::shared_ptr<const DiskNumbers> DiskNumberStore::read() {
    std::string found = contentsOf(folder + fileName);
    isKept = !found.empty(); // without a file, what this process has given stays
    if (isKept && found != text) {
        numbers = std::make_shared<DiskNumbers>(DiskNumbers::parse(found, thisBoot()));
        text = std::move(found);
    }
    return numbers;
}

std::shared_ptr<const DiskNumbers> DiskNumberStore::stored() {
    const ErrorNumberKept meanwhile;
    const std::lock_guard guard(mutex);
    return read();
}

DiskNumberStore::State DiskNumberStore::compute() {
    State state{devices.disks(), read()};
    DiskNumbers updated = *state.numbers;
    updated.update(state.disks);
    if (updated != *state.numbers)
        state.numbers = std::make_shared<DiskNumbers>(std::move(updated));
    return state;
}

DiskNumberStore::State DiskNumberStore::current() {
    const ErrorNumberKept meanwhile;
    const std::lock_guard guard(mutex);
    State state = compute();
    if (state.numbers == numbers && isKept)
        return state;
    const Descriptor lock = lockFolder();
    if (lock.isOpen()) {
        state = compute(); // another process may have been faster
        if (state.numbers != numbers || !isKept)
            write(*state.numbers);
    }
    numbers = state.numbers;
    return state;
}

Descriptor DiskNumberStore::lockFolder() const {
    if (!makeFolder(folder))
        return Descriptor();
    // For nobody else to open: whoever can, can keep everyone waiting.
    Descriptor lock(
        open((folder + lockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    while (lock.isOpen() && flock(lock.get(), LOCK_EX) != 0) {
        if (errno != EINTR)
            lock.reset();
    }
    return lock;
}

void DiskNumberStore::write(const DiskNumbers& toWrite) const {
    const TerminationDeferred untilWhole;
    const std::string contents = toWrite.text(thisBoot());
    const std::string path = folder + newFileName;
    const Descriptor file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!file.isOpen())
        return;
    const ssize_t written = ::write(file.get(), contents.data(), contents.size());
    const bool whole = written == static_cast<ssize_t>(contents.size()) &&
                       fchmod(file.get(), 0644) == 0 &&
                       rename(path.c_str(), (folder + fileName).c_str()) == 0;
    if (!whole)
        unlink(path.c_str());
}

DiskNumberStore& diskNumberStore() {
    // Never destroyed: disks may be asked for until the process ends.
    static auto* const only = new DiskNumberStore(runTimeFolder(), BlockDevices());
    return *only;
}

} // namespace Korvex
