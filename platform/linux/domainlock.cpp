#include "platform/linux/domainlock.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/uio.h>
#include <time.h>

namespace Korvex {

namespace {

using PropertyList::ByteView;
using Scope = PreferenceDomain::Scope;

constexpr long long nanosecondsInSecond = 1000000000;

mode_t folderMode(Scope scope) {
    return scope == Scope::AnyUser ? 0755 : 0700;
}

mode_t fileMode(Scope scope) {
    return scope == Scope::AnyUser ? 0644 : 0600;
}

/// What root makes among another user's files is that user's.
void giveTo(uid_t owner, gid_t group, int descriptor) {
    // One that cannot be given away stays root's, which can still be read as its mode says.
    if (geteuid() == 0 && (owner != geteuid() || group != getegid()))
        (void)!fchown(descriptor, owner, group);
}

Descriptor openFolder(const QByteArray& path) {
    return Descriptor(open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// Opens a folder, and makes it and those that it is in when they are missing.
Descriptor makeFolder(const QByteArray& path, Scope scope) {
    Descriptor opened = openFolder(path);
    qsizetype end = 0;
    while (!opened.isOpen() && errno == ENOENT && end < path.size()) {
        const qsizetype slash = path.indexOf('/', end + 1);
        end = slash < 0 ? path.size() : slash;
        const QByteArray part = path.left(end);
        const bool made = mkdir(part.constData(), folderMode(scope)) == 0;
        if (!made && errno != EEXIST)
            return Descriptor();
        if (made) {
            const Descriptor own = openFolder(part);
            struct stat parent {};
            if (fstatat(own.get(), "..", &parent, 0) == 0)
                giveTo(parent.st_uid, parent.st_gid, own.get());
            (void)fchmod(own.get(), folderMode(scope)); // whatever the mask took away
        }
        opened = openFolder(path);
    }
    return opened;
}

bool waitFor(int descriptor) {
    int result = 0;
    do {
        result = flock(descriptor, LOCK_EX);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/// A name that nobody can have put anything under beforehand.
QByteArray unpredictable() {
    std::array<char, 8> random{};
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
        return QByteArray();
    return QByteArray(random.data(), static_cast<qsizetype>(random.size())).toHex();
}

/// A file that is gone with its holder unless it was moved to its place.
class TemporaryFile {
public:
    TemporaryFile(int inFolder, const QByteArray& ofName)
        : folder(inFolder),
          name(ofName),
          descriptor(openat(folder, name.constData(),
                            O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)) {}
    ~TemporaryFile() {
        if (!descriptor.isOpen() || moved)
            return;
        const ErrorNumberKept meanwhile;
        unlinkat(folder, name.constData(), 0);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool isOpen() const { return descriptor.isOpen(); }
    [[nodiscard]] int get() const { return descriptor.get(); }
    [[nodiscard]] bool moveTo(const QByteArray& place) {
        moved = renameat(folder, name.constData(), folder, place.constData()) == 0;
        return moved;
    }

private:
    int folder;
    QByteArray name;
    Descriptor descriptor;
    bool moved = false;
};

iovec vectorOf(ByteView bytes) {
    return {const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
}

bool fill(int descriptor, ByteView head, ByteView tail) {
    while (!head.empty() || !tail.empty()) {
        const std::array parts{vectorOf(head), vectorOf(tail)};
        const ssize_t count = writev(descriptor, parts.data(), static_cast<int>(parts.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        const std::size_t ofHead = std::min(static_cast<std::size_t>(count), head.size());
        head = head.subspan(ofHead);
        tail = tail.subspan(static_cast<std::size_t>(count) - ofHead);
    }
    return true;
}

/// Gives a file a time of its own, finer than the system's stamps and never that of the file it
/// replaces, so that readers can tell the two apart whatever number the new file was given.
bool stamp(int descriptor, const FileIdentity& old) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec * nanosecondsInSecond + now.tv_nsec == old.modified)
        now.tv_nsec = (now.tv_nsec + 1) % nanosecondsInSecond;
    const std::array times{now, now};
    return futimens(descriptor, times.data()) == 0;
}

} // namespace

DomainLock::DomainLock(const DomainFile& toChange) : file(toChange) {
    if (file.path.isEmpty())
        return;
    folder = makeFolder(file.folder, file.scope);
    if (!folder.isOpen())
        return;
    lock = openLock();
    held = lock.isOpen() && waitFor(lock.get());
}

Descriptor DomainLock::openLock() const {
    constexpr int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor opened(openat(folder.get(), file.lockName.constData(), flags));
    if (opened.isOpen() || errno != ENOENT)
        return opened;
    // Readable by nobody else: whoever can open it can keep everyone from changing the domain.
    opened = Descriptor(openat(folder.get(), file.lockName.constData(), flags | O_CREAT, 0600));
    if (opened.isOpen())
        giveOwner(file.identify().value_or(FileIdentity()), opened.get());
    return opened;
}

DomainLock::~DomainLock() {
    // A child that was forked meanwhile has the descriptor too, and closing alone would leave the
    // lock with it.
    if (!held)
        return;
    const ErrorNumberKept meanwhile;
    flock(lock.get(), LOCK_UN);
}

void DomainLock::giveOwner(const FileIdentity& old, int descriptor) const {
    struct stat status {};
    if (old.exists)
        giveTo(old.owner, old.group, descriptor);
    else if (fstat(folder.get(), &status) == 0)
        giveTo(status.st_uid, status.st_gid, descriptor);
}

void DomainLock::sweep() const {
    const auto closeListing = [](DIR* listing) {
        const TerminationDeferred untilClosed;
        closedir(listing);
    };
    Descriptor listed = openFolder(file.folder);
    if (!listed.isOpen())
        return;
    const std::unique_ptr<DIR, decltype(closeListing)> listing(fdopendir(listed.get()),
                                                               closeListing);
    if (!listing)
        return;
    (void)listed.release();
    while (const dirent* entry = readdir(listing.get())) {
        if (QByteArrayView(entry->d_name).startsWith(file.temporaryName))
            unlinkat(folder.get(), entry->d_name, 0);
    }
}

std::optional<FileIdentity> DomainLock::replace(const FileIdentity& old, ByteView head,
                                                ByteView tail, bool safe) const {
    const QByteArray unknown = unpredictable();
    if (unknown.isEmpty())
        return std::nullopt;
    TemporaryFile temporary(folder.get(), file.temporaryName + unknown);
    if (!temporary.isOpen() || fchmod(temporary.get(), fileMode(file.scope)) != 0)
        return std::nullopt;
    giveOwner(old, temporary.get());
    if (!fill(temporary.get(), head, tail) || !stamp(temporary.get(), old) ||
        (safe && fdatasync(temporary.get()) != 0) || !temporary.moveTo(file.name) ||
        (safe && fsync(folder.get()) != 0))
        return std::nullopt;
    struct stat status {};
    return fstat(temporary.get(), &status) == 0 ? std::optional(identityOf(status)) : std::nullopt;
}

} // namespace Korvex
