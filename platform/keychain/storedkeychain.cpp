#include "platform/keychain/storedkeychain.h"

#include "platform/keychain/files.h"
#include "platform/keychain/status.h"
#include "platform/keychain/unlockedkeychains.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Korvex {

namespace Status = KeychainStatus;

namespace {

int statusOfReading(int error) {
    switch (error) {
    case 0:
        return Status::Success;
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
        return Status::NoSuchKeychain;
    case EACCES:
    case EPERM:
        return Status::NotAvailable;
    case ENOMEM:
        return Status::NoMemory;
    case ELOOP:
    case ENXIO: // a socket
    case EFBIG:
    case EISDIR:
        return Status::InvalidKeychain;
    default:
        return Status::TransferFailed;
    }
}

int statusOfWriting(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return Status::ReadOnly;
    case EEXIST:
    case EISDIR:
        return Status::DuplicateKeychain;
    default:
        return statusOfReading(error);
    }
}

/// An open keychain file.
struct OpenFile {
    Descriptor descriptor;
    struct stat status {};

    int open(const std::string& path) {
        descriptor.reset(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        if (!descriptor.isOpen() || fstat(descriptor.get(), &status) != 0)
            return statusOfReading(errno);
        return S_ISREG(status.st_mode) ? Status::Success : Status::InvalidKeychain;
    }

    [[nodiscard]] int read(KeychainDocument& document) const {
        std::string text;
        const int error = WholeFile::read(descriptor.get(), KeychainDocument::largestSize, text);
        if (error != 0)
            return statusOfReading(error);
        if (!Cryptography::isAvailable())
            return Status::NotAvailable;
        auto found = KeychainDocument::read(text);
        if (!found)
            return Status::InvalidKeychain;
        document = std::move(*found);
        return Status::Success;
    }

    /// Waits until no other process changes the keychain.
    [[nodiscard]] int lock() const {
        int result = 0;
        do {
            result = flock(descriptor.get(), LOCK_EX);
        } while (result != 0 && errno == EINTR);
        return result == 0 ? Status::Success : Status::TransferFailed;
    }

    /// Whether the file is still the one of that path.
    [[nodiscard]] bool isStillAt(const std::string& path) const {
        struct stat now {};
        return stat(path.c_str(), &now) == 0 && now.st_dev == status.st_dev &&
               now.st_ino == status.st_ino;
    }
};

/// Opens a keychain that nobody else changes as long as it is open.
int openForChange(const std::string& path, OpenFile& file) {
    do {
        if (const int status = file.open(path); status != Status::Success)
            return status;
        if (const int status = file.lock(); status != Status::Success)
            return status;
        // Who held the lock before has put another file in the place of this one.
    } while (!file.isStillAt(path));
    return Status::Success;
}

/// The path of a file itself, where links lead to it.
std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : path;
}

int addTo(KeychainDocument& document, const std::vector<KeychainItem>& items) {
    for (const KeychainItem& item : items) {
        if (std::find(document.items.begin(), document.items.end(), item) != document.items.end())
            return Status::DuplicateItem;
        document.items.push_back(item);
    }
    return Status::Success;
}

int writeAnew(const std::string& path, const OpenFile& old, std::string_view text) {
    WholeFile::Place place;
    int error = place.find(path);
    if (error == 0)
        error = WholeFile::replace(place.folder.get(), place.name, text,
                                   {0600, old.status.st_uid, old.status.st_gid});
    return statusOfWriting(error);
}

} // namespace

int StoredKeychain::create(const std::string& path, std::string_view password,
                           std::vector<KeychainItem> items) {
    WholeFile::Place place;
    if (const int error = place.find(path); error != 0)
        return statusOfWriting(error);
    KeychainKey key;
    auto document = KeychainDocument::create(password, key);
    if (!document)
        return Status::NotAvailable;
    document->items = std::move(items);
    const std::string text = document->write(key);
    if (text.empty())
        return Status::DataTooLarge;
    const int error = WholeFile::create(place.folder.get(), place.name, text, {});
    if (error == 0)
        (void)UnlockedKeychains::keep(document->identifier, key);
    return statusOfWriting(error);
}

int StoredKeychain::open(const std::string& path) {
    OpenFile file;
    const int status = file.open(path);
    return status == Status::Success ? file.read(document) : status;
}

int StoredKeychain::add(const std::string& givenPath, const std::vector<KeychainItem>& items) {
    const std::string path = resolved(givenPath);
    OpenFile file;
    KeychainDocument document;
    if (const int status = openForChange(path, file); status != Status::Success)
        return status;
    if (const int status = file.read(document); status != Status::Success)
        return status;
    const auto key = UnlockedKeychains::keyOf(document.identifier);
    if (!key)
        return Status::InteractionNotAllowed;
    if (!document.isSealedBy(*key))
        return Status::InvalidKeychain;
    if (const int status = addTo(document, items); status != Status::Success)
        return status;
    const std::string text = document.write(*key);
    return text.empty() ? Status::DataTooLarge : writeAnew(path, file, text);
}

int StoredKeychain::unlock(std::string_view password) const {
    const auto key = document.keyFor(password);
    if (!key)
        return Status::WrongPassword;
    if (!document.isSealedBy(*key))
        return Status::InvalidKeychain;
    return UnlockedKeychains::keep(document.identifier, *key) ? Status::Success
                                                              : Status::NotAvailable;
}

int StoredKeychain::lock() const {
    return UnlockedKeychains::forget(document.identifier) ? Status::Success : Status::NotAvailable;
}

bool StoredKeychain::isUnlocked() const {
    return UnlockedKeychains::keyOf(document.identifier).has_value();
}

int StoredKeychain::verify() const {
    const auto key = UnlockedKeychains::keyOf(document.identifier);
    return !key || document.isSealedBy(*key) ? Status::Success : Status::InvalidKeychain;
}

} // namespace Korvex
