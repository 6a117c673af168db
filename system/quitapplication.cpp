#include <KxQts/system/sessioncontrol.h>

#include "platform/processtable.h"
#include "system/commandname.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

using Korvex::ProcessEntry;
using Korvex::processTable;

namespace {

/// Whether a process is one that a user would see as an application, and not the caller.
bool isApplication(const ProcessEntry& process) {
    const bool isOurs = process.user == geteuid() && process.id != getpid();
    const bool isSystems =
        process.id == 1 || process.isKernelThread || (process.isService && geteuid() == 0);
    return isOurs && !isSystems && !process.hasEnded;
}

/// Callers pass names that are longer than those of processes, so a part of one is enough.
bool isFoundBy(const QString& name, const ProcessEntry& process) {
    const QString cut = QString::fromLatin1(process.name.c_str()).left(name.size());
    return !cut.isEmpty() && name.contains(cut, Qt::CaseInsensitive);
}

std::optional<ProcessEntry> firstFoundBy(const QString& name) {
    std::vector<ProcessEntry> processes;
    if (processTable().read(processes) != 0)
        return std::nullopt;
    const auto found = std::ranges::find_if(processes, [&](const ProcessEntry& process) {
        return isApplication(process) && isFoundBy(name, process);
    });
    return found == processes.end() ? std::nullopt : std::optional(*found);
}

int numberOf(int systemError) {
    if (systemError == 0)
        return noErr;
    if (systemError == ESRCH)
        return procNotFound;
    return systemError == EPERM ? errAEPrivilegeError : errAEEventFailed;
}

} // namespace

int forceApplicationQuit(const char* name) {
    const std::optional<QString> searched = Korvex::commandName(name);
    if (!searched)
        return -1;
    const std::optional<ProcessEntry> process = firstFoundBy(*searched);
    const int error = process ? numberOf(processTable().askToEnd(*process)) : procNotFound;
    if (error != noErr)
        return error;
    int status = 0;
    errno = 0;
    const pid_t ended = waitpid(process->id, &status, 0);
    if (ended == -1 && errno == ECHILD) // as with every application that someone else started
        return 0;
    std::printf("Wait for <%s> termination: pid %d, status %d, errno %d.\n", name, process->id,
                status, errno);
    return 1;
}
