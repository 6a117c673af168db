#include "platform/linux/processtable.h"

#include "platform/descriptor.h"
#include "platform/replaceable.h"
#include "platform/textfile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <dirent.h>
#include <memory>
#include <sstream>
#include <string_view>

// Not every version of the header says that these are functions of C.
extern "C" {
#include <sys/pidfd.h>
}

namespace Korvex {

namespace {

/// The id that a folder's name stands for; 0 for names that are none.
int idFrom(std::string_view name) {
    int id = 0;
    const auto end = std::from_chars(name.data(), name.data() + name.size(), id);
    return end.ptr == name.data() + name.size() && id > 0 ? id : 0;
}

/// Reads what the kernel says about a process in one line. The name stands in parentheses and may
/// hold anything, parentheses and new lines included.
std::optional<ProcessEntry> entryFrom(const std::string& line) {
    constexpr unsigned long kernelThread = 0x00200000;
    constexpr int fieldsUpToStart = 12; // between the flags and the time of the start
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open)
        return std::nullopt;
    ProcessEntry entry;
    entry.id = std::atoi(line.c_str()); // NOLINT(cert-err34-c): the kernel's own text
    entry.name = line.substr(open + 1, close - open - 1);
    std::istringstream fields(line.substr(close + 1));
    char state = 0;
    long skipped = 0;
    unsigned long flags = 0;
    fields >> state >> entry.parent >> skipped >> skipped >> skipped >> skipped >> flags;
    for (int i = 0; i < fieldsUpToStart; ++i)
        fields >> skipped;
    fields >> entry.startTime;
    entry.hasEnded = state == 'Z' || state == 'X';
    entry.isKernelThread = (flags & kernelThread) != 0;
    return fields ? std::optional(entry) : std::nullopt;
}

/// Whether it is this program that could not look, and not the process that is gone or another
/// user's.
bool isOwnFailure(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EIO;
}

} // namespace

std::string LinuxProcessTable::pathOf(int id, const char* file) const {
    return std::string(folder) + '/' + std::to_string(id) + '/' + file;
}

unsigned LinuxProcessTable::effectiveUserOf(int id) const {
    constexpr std::string_view heading = "\nUid:";
    const std::string status = readTextFile(pathOf(id, "status")).value_or(std::string());
    const std::size_t at = status.find(heading);
    unsigned real = 0;
    unsigned effective = ~0U; // nobody
    if (at != std::string::npos)
        std::istringstream(status.substr(at + heading.size())) >> real >> effective;
    return effective;
}

bool LinuxProcessTable::isServiceProcess(int id) const {
    constexpr std::string_view services = "/system.slice";
    std::istringstream groups(readTextFile(pathOf(id, "cgroup")).value_or(std::string()));
    std::string group;
    bool found = false;
    while (std::getline(groups, group)) {
        const std::size_t at = group.find(services);
        found |= at != std::string::npos &&
                 (at + services.size() == group.size() || group[at + services.size()] == '/');
    }
    return found;
}

std::optional<ProcessEntry> LinuxProcessTable::find(int id) const {
    const std::optional<std::string> line = readTextFile(pathOf(id, "stat"));
    std::optional<ProcessEntry> entry = line ? entryFrom(*line) : std::nullopt;
    if (entry) {
        entry->user = effectiveUserOf(id);
        entry->isService = isServiceProcess(id);
    }
    return entry;
}

int LinuxProcessTable::read(std::vector<ProcessEntry>& processes) {
    processes.clear();
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder), closedir);
    if (!listing)
        return errno;
    while (const dirent* name = readdir(listing.get())) {
        const int id = idFrom(name->d_name);
        errno = 0;
        std::optional<ProcessEntry> entry = id != 0 ? find(id) : std::nullopt;
        // A list that lacks a process for want of a descriptor would be taken for the whole one.
        if (isOwnFailure(errno)) {
            const int error = errno;
            processes.clear();
            return error;
        }
        // Who vanished since its name was read is left out.
        if (entry)
            processes.push_back(std::move(*entry));
    }
    std::ranges::sort(processes, {}, &ProcessEntry::id);
    return 0;
}

int LinuxProcessTable::askToEnd(const ProcessEntry& process) {
    // The descriptor stands for one process for good; what its id stood for before is compared.
    const Descriptor target(pidfd_open(process.id, 0));
    if (!target.isOpen())
        return errno;
    const std::optional<ProcessEntry> now = find(process.id);
    if (!now || now->startTime != process.startTime)
        return ESRCH;
    return pidfd_send_signal(target.get(), SIGTERM, nullptr, 0) == 0 ? 0 : errno;
}

ProcessTable& processTable() {
    static LinuxProcessTable table;
    return inForce<ProcessTable>(table);
}

} // namespace Korvex
