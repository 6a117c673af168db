#include <KxQts/system/processlist.h>

#include "platform/processtable.h"
#include "system/commandname.h"

#include <KxQts/errors.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

using Korvex::ProcessEntry;

namespace {

kinfo_proc recordOf(const ProcessEntry& process) {
    kinfo_proc record{};
    record.kp_proc.p_pid = process.id;
    record.kp_proc.p_stat = process.hasEnded ? SZOMB : SRUN;
    std::strncpy(record.kp_proc.p_comm, process.name.c_str(), MAXCOMLEN);
    record.kp_eproc.e_ppid = process.parent;
    record.kp_eproc.e_uid = process.user;
    return record;
}

/// A process of an application's helper, with a D at its end, is not the application.
bool isProcessOf(const QString& name, const kinfo_proc& process) {
    const QString command = QString::fromLatin1(process.kp_proc.p_comm);
    return command.contains(name, Qt::CaseInsensitive) &&
           !command.contains(name + QLatin1Char('D'), Qt::CaseInsensitive);
}

void store(int found, bool* running, int* count) {
    if (running)
        *running = found > 0;
    if (count)
        *count = found;
}

} // namespace

int GetBSDProcessList(kinfo_proc** list, unsigned long* count) try {
    if (!list || !count)
        return Korvex::Error::InvalidArgument;
    std::vector<ProcessEntry> processes;
    *list = nullptr;
    *count = 0;
    if (const int error = Korvex::processTable().read(processes))
        return error;
    *list = new (std::nothrow) kinfo_proc[processes.size()];
    if (!*list)
        return Korvex::Error::NoMemory;
    std::transform(processes.begin(), processes.end(), *list, recordOf);
    *count = processes.size();
    return 0;
} catch (const std::bad_alloc&) {
    return Korvex::Error::NoMemory;
}

int checkApplicationAlreadyRunning(const char* name, bool* running, int* count) try {
    const std::optional<QString> searched = Korvex::commandName(name);
    if (!searched)
        return -1;
    kinfo_proc* list = nullptr;
    unsigned long listed = 0;
    if (const int error = GetBSDProcessList(&list, &listed))
        return error;
    const std::unique_ptr<kinfo_proc[]> owned(list);
    int found = 0;
    for (unsigned long i = 0; i < listed; ++i)
        found += isProcessOf(*searched, list[i]) ? 1 : 0;
    store(found, running, count);
    if (listed == 0) {
        std::printf("checkApplicationAlreadyRunning: procList == NULL.");
        return -1;
    }
    return 0;
} catch (const std::bad_alloc&) {
    return Korvex::Error::NoMemory;
}
