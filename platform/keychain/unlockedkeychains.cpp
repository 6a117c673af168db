#include "platform/keychain/unlockedkeychains.h"

#include "platform/keychain/files.h"
#include "platform/keychain/hexadecimal.h"
#include "platform/userruntimefolder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvex::UnlockedKeychains {

namespace {

std::string folderPath() {
    return userRuntimeFolder() + "/keychains";
}

/// Makes a folder and those that it is in. Only what is the user's own is closed to others.
void makeFolder(const std::string& path) {
    const std::size_t own = userRuntimeFolder().size();
    for (std::size_t end = path.find('/', 1); end != std::string::npos;
         end = path.find('/', end + 1))
        mkdir(path.substr(0, end).c_str(), end < own ? 0755 : 0700);
    mkdir(path.c_str(), 0700);
}

/// The folder, if it is there and nobody else can look or write into it.
Descriptor openFolder() {
    Descriptor folder(open(folderPath().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder.isOpen() || fstat(folder.get(), &status) != 0 || status.st_uid != geteuid() ||
        (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        folder.reset();
    return folder;
}

std::string_view textOf(const KeychainKey& key) {
    return {reinterpret_cast<const char*>(key.bytes.data()), key.bytes.size()};
}

/// Overwrites what other processes may have open.
void overwrite(int file) {
    const KeychainKey nothing;
    (void)!pwrite(file, nothing.bytes.data(), nothing.bytes.size(), 0);
}

} // namespace

std::optional<KeychainKey> keyOf(const KeychainDocument::Identifier& identifier) {
    const ErrorNumberKept meanwhile;
    const Descriptor folder = openFolder();
    if (!folder.isOpen())
        return std::nullopt;
    const Descriptor file(openat(folder.get(), hexadecimal(identifier).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    KeychainKey key;
    if (!file.isOpen() || ::read(file.get(), key.bytes.data(), key.bytes.size()) !=
                              static_cast<ssize_t>(key.bytes.size()))
        return std::nullopt;
    // Nothing but zeros: it was locked this very moment.
    return key.bytes == KeychainBlock() ? std::nullopt : std::optional(key);
}

bool keep(const KeychainDocument::Identifier& identifier, const KeychainKey& key) {
    const ErrorNumberKept meanwhile;
    makeFolder(folderPath());
    const Descriptor folder = openFolder();
    return folder.isOpen() &&
           WholeFile::replace(folder.get(), hexadecimal(identifier), textOf(key), {}) == 0;
}

bool forget(const KeychainDocument::Identifier& identifier) {
    const ErrorNumberKept meanwhile;
    const Descriptor folder = openFolder();
    const std::string name = hexadecimal(identifier);
    const Descriptor file(
        openat(folder.get(), name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    const bool removed =
        !folder.isOpen() || unlinkat(folder.get(), name.c_str(), 0) == 0 || errno == ENOENT;
    if (file.isOpen())
        overwrite(file.get());
    return removed;
}

} // namespace Korvex::UnlockedKeychains
