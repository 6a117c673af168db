#include "platform/keychain/files.h"

#include "platform/keychain/cryptography.h"
#include "platform/keychain/hexadecimal.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvex::WholeFile {

namespace {

/// A name that nobody can have put anything under beforehand.
std::string unpredictableName() {
    std::array<std::uint8_t, 8> bytes{};
    return Cryptography::random(bytes.data(), bytes.size()) ? ".kxqts-" + hexadecimal(bytes)
                                                            : std::string();
}

/// A file under a name of its own, which is gone with its holder unless it was moved to its place.
class Temporary {
public:
    explicit Temporary(int inFolder)
        : folder(inFolder),
          name(unpredictableName()),
          descriptor(name.empty()
                         ? -1
                         : openat(folder, name.c_str(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)) {}
    ~Temporary() {
        if (!descriptor.isOpen() || moved)
            return;
        const TerminationDeferred untilRemoved;
        const ErrorNumberKept meanwhile;
        unlinkat(folder, name.c_str(), 0);
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    [[nodiscard]] int get() const { return descriptor.get(); }
    [[nodiscard]] bool moveTo(const std::string& place) {
        moved = renameat(folder, name.c_str(), folder, place.c_str()) == 0;
        return moved;
    }
    [[nodiscard]] bool linkTo(const std::string& place) const {
        return linkat(folder, name.c_str(), folder, place.c_str(), 0) == 0;
    }

private:
    int folder;
    std::string name;
    Descriptor descriptor;
    bool moved = false;
};

bool fill(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Writes all there is to a file that nobody knows of yet, to the disk.
bool prepare(int descriptor, std::string_view bytes, const Attributes& attributes) {
    if (descriptor < 0)
        return false;
    if (geteuid() == 0 && fchown(descriptor, attributes.owner, attributes.group) != 0)
        return false;
    return fchmod(descriptor, attributes.mode) == 0 && fill(descriptor, bytes) &&
           fsync(descriptor) == 0;
}

int error() {
    return errno != 0 ? errno : EIO;
}

} // namespace

int read(int descriptor, std::size_t limit, std::string& bytes) {
    std::array<char, 16384> buffer{};
    const WipedAtEnd wiped(buffer);
    bytes.clear();
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count < 0 ? errno : 0;
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
        if (bytes.size() > limit)
            return EFBIG;
    }
}

int replace(int folder, const std::string& name, std::string_view bytes, Attributes attributes) {
    Temporary file(folder);
    if (!prepare(file.get(), bytes, attributes) || !file.moveTo(name))
        return error();
    (void)fsync(folder); // some file systems cannot, and the file is in its place anyway
    return 0;
}

int create(int folder, const std::string& name, std::string_view bytes, Attributes attributes) {
    const Temporary file(folder);
    if (!prepare(file.get(), bytes, attributes) || !file.linkTo(name))
        return error();
    (void)fsync(folder);
    return 0;
}

int Place::find(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string before = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..")
        return EISDIR;
    folder.reset(open(before.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() ? 0 : errno;
}

} // namespace Korvex::WholeFile
