#include "namedmutexes.h"

#include "arguments.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <pwd.h>
#include <semaphore.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Kx {

namespace {

// Where the C library keeps named semaphores, and what it puts in front of their names.
const fs::path folder = "/dev/shm";
constexpr std::string_view prefix = "sem.";

std::string fullName(std::string_view name) {
    return '/' + std::string(name.substr(std::min(name.find_first_not_of('/'), name.size())));
}

[[noreturn]] void fail(const std::string& what, const std::string& name) {
    throw Failure("cannot " + what + " " + name + ": " + std::strerror(errno));
}

std::string userName(uid_t user) {
    const passwd* entry = getpwuid(user);
    return entry ? entry->pw_name : std::to_string(user);
}

/// Reads the count from a copy of the semaphore. The file is anybody's: it is never mapped, for it
/// may be shorter than a semaphore, and never waited for, for it may be no file.
std::optional<int> countIn(const fs::path& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    sem_t copy;
    const ssize_t size = read(descriptor, &copy, sizeof copy);
    close(descriptor);
    int count = 0;
    if (size != static_cast<ssize_t>(sizeof copy) || sem_getvalue(&copy, &count) != 0)
        return std::nullopt;
    return count;
}

/// How a mapping of a file is written in a process's list of mappings: its device and its number.
std::string mappingOf(const struct stat& status) {
    std::ostringstream text;
    text.setf(std::ios::hex, std::ios::basefield);
    text.fill('0');
    text.width(2);
    text << major(status.st_dev) << ':';
    text.width(2);
    text << minor(status.st_dev);
    text.setf(std::ios::dec, std::ios::basefield);
    text << ' ' << status.st_ino << ' ';
    return text.str();
}

bool isProcess(const fs::path& entry) {
    const std::string name = entry.filename();
    return name.find_first_not_of("0123456789") == std::string::npos;
}

/// A mutex and how it is told in lists of mappings.
struct Found {
    NamedMutex mutex;
    std::string mapping;
};

void addUser(std::vector<Found>& found, pid_t process, const std::string& mappings) {
    for (Found& candidate : found) {
        if (mappings.find(candidate.mapping) != std::string::npos)
            candidate.mutex.users.push_back(process);
    }
}

void addUsers(std::vector<Found>& found) {
    bool all = true;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc", error)) {
        if (!isProcess(entry.path()))
            continue;
        std::ifstream file(entry.path() / "maps");
        // Only what may not be looked at might have one open; a process that has ended has not.
        if (!file.is_open() && (errno == EACCES || errno == EPERM))
            all = false;
        std::ostringstream mappings;
        mappings << file.rdbuf();
        addUser(found, std::stoi(entry.path().filename()), mappings.str());
    }
    for (Found& each : found) {
        each.mutex.allUsersKnown = all;
        std::sort(each.mutex.users.begin(), each.mutex.users.end());
    }
}

std::optional<Found> lookAt(const fs::path& file) {
    struct stat status {};
    if (lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    NamedMutex mutex;
    mutex.name = '/' + file.filename().string().substr(prefix.size());
    mutex.count = countIn(file);
    mutex.owner = userName(status.st_uid);
    mutex.made = status.st_mtime;
    return Found{std::move(mutex), mappingOf(status)};
}

} // namespace

std::vector<NamedMutex> namedMutexes() {
    std::vector<Found> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (!entry.path().filename().string().starts_with(prefix))
            continue;
        if (std::optional<Found> mutex = lookAt(entry.path()))
            found.push_back(std::move(*mutex));
    }
    addUsers(found);
    std::vector<NamedMutex> mutexes;
    for (Found& each : found)
        mutexes.push_back(std::move(each.mutex));
    std::sort(mutexes.begin(), mutexes.end(),
              [](const NamedMutex& a, const NamedMutex& b) { return a.name < b.name; });
    return mutexes;
}

NamedMutex namedMutex(std::string_view name) {
    const std::string wanted = fullName(name);
    std::vector<NamedMutex> all = namedMutexes();
    const auto found = std::find_if(all.begin(), all.end(), [&](const NamedMutex& candidate) {
        return candidate.name == wanted;
    });
    if (found == all.end())
        throw Failure("there is no mutex " + wanted);
    return *found;
}

void removeNamedMutex(const NamedMutex& mutex) {
    if (sem_unlink(mutex.name.c_str()) != 0)
        fail("remove", mutex.name);
}

void releaseNamedMutex(const NamedMutex& mutex) {
    if (!mutex.count)
        throw Failure("cannot release " + mutex.name + ": it cannot be read");
    sem_t* semaphore = sem_open(mutex.name.c_str(), 0);
    if (semaphore == SEM_FAILED)
        fail("open", mutex.name);
    const bool released = sem_post(semaphore) == 0;
    const int error = errno;
    sem_close(semaphore);
    errno = error;
    if (!released)
        fail("release", mutex.name);
}

} // namespace Kx
