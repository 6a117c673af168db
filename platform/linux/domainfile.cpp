#include "platform/linux/domainfile.h"

#include <QCryptographicHash>

#include <fcntl.h>
#include <time.h>

namespace Korvex {

namespace {

constexpr long long nanosecondsInSecond = 1000000000;

long long nanoseconds(const timespec& time) {
    return static_cast<long long>(time.tv_sec) * nanosecondsInSecond + time.tv_nsec;
}

QByteArray folderOf(const QByteArray& path) {
    return path.left(path.lastIndexOf('/'));
}

QByteArray nameOf(const QByteArray& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

// No longer than the name of the file itself, so that every domain that can have a file can be
// locked.
QByteArray lockNameOf(const QByteArray& path) {
    const QByteArray name = nameOf(path);
    return '.' + name.left(name.lastIndexOf('.')) + ".lock";
}

QByteArray temporaryNameOf(const QByteArray& path) {
    constexpr int enough = 8;
    return ".kxqts-" +
           QCryptographicHash::hash(nameOf(path), QCryptographicHash::Sha1).toHex().left(enough) +
           '-';
}

bool isSettled(const FileIdentity& identity) {
    // Longer than any tick that files are stamped with.
    constexpr long long longEnough = nanosecondsInSecond / 50;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return nanoseconds(now) - identity.changed > longEnough;
}

bool readAll(int descriptor, PropertyList::Bytes& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::read(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

FileIdentity identityOf(const struct stat& status) {
    FileIdentity identity;
    identity.exists = true;
    identity.device = status.st_dev;
    identity.node = status.st_ino;
    identity.size = status.st_size;
    identity.modified = nanoseconds(status.st_mtim);
    identity.changed = nanoseconds(status.st_ctim);
    identity.owner = status.st_uid;
    identity.group = status.st_gid;
    return identity;
}

DomainFile::DomainFile(const QByteArray& toPath, PreferenceDomain::Scope inScope)
    : path(toPath),
      folder(folderOf(path)),
      name(nameOf(path)),
      lockName(lockNameOf(path)),
      temporaryName(temporaryNameOf(path)),
      scope(inScope) {}

std::optional<FileIdentity> DomainFile::identify() const {
    struct stat status {};
    if (path.isEmpty())
        return std::nullopt;
    if (stat(path.constData(), &status) == 0)
        return identityOf(status);
    return errno == ENOENT ? std::optional(FileIdentity()) : std::nullopt;
}

std::optional<DomainFile::Contents> DomainFile::read(std::size_t limit) const {
    const Descriptor file(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat before {};
    if (!file.isOpen() || fstat(file.get(), &before) != 0 || !S_ISREG(before.st_mode) ||
        static_cast<unsigned long long>(before.st_size) > limit)
        return std::nullopt;
    Contents contents;
    contents.identity = identityOf(before);
    contents.isSettled = isSettled(contents.identity);
    contents.bytes.resize(static_cast<std::size_t>(before.st_size));
    if (!readAll(file.get(), contents.bytes))
        return std::nullopt;
    return contents;
}

} // namespace Korvex
