#include "command.h"
#include "namedmutexes.h"
#include "table.h"

#include <array>
#include <ctime>

namespace Kx {

namespace {

constexpr std::array options{
    Option{"remove", "NAME", "Take this name out of the system"},
    Option{"release", "NAME", "Raise its count by one, as its owner would"},
    Option{"force", "", "Remove it although processes have it open"},
};

std::string joined(const std::vector<pid_t>& processes) {
    std::string text;
    for (const pid_t process : processes)
        text += (text.empty() ? "" : " ") + std::to_string(process);
    return text;
}

std::string usersOf(const NamedMutex& mutex) {
    if (!mutex.users.empty())
        return joined(mutex.users);
    return mutex.allUsersKnown ? "-" : "?";
}

std::string timeText(time_t time) {
    constexpr std::size_t room = 32;
    std::array<char, room> text{};
    tm local{};
    localtime_r(&time, &local);
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return {text.data(), length};
}

Cell stateOf(const NamedMutex& mutex) {
    if (!mutex.count)
        return {"unreadable", Style::Dim};
    return *mutex.count > 0 ? Cell("free", Style::Good) : Cell("taken", Style::Bad);
}

void list(const std::vector<NamedMutex>& mutexes) {
    Table table({{"NAME"}, {"COUNT", Align::Right}, {"STATE"}, {"OWNER"}, {"MADE"}, {"OPEN IN"}});
    for (const NamedMutex& mutex : mutexes) {
        const std::string count = mutex.count ? std::to_string(*mutex.count) : "?";
        table.add(
            {mutex.name, count, stateOf(mutex), mutex.owner, timeText(mutex.made), usersOf(mutex)});
    }
    if (!table.isEmpty())
        table.print();
}

std::vector<NamedMutex> selected(const std::vector<std::string>& names) {
    if (names.empty())
        return namedMutexes();
    std::vector<NamedMutex> found;
    for (const std::string& name : names)
        found.push_back(namedMutex(name));
    return found;
}

void remove(const NamedMutex& mutex, bool force) {
    if (!force && !mutex.users.empty())
        throw Failure(mutex.name + " is open in process " + joined(mutex.users) +
                      " (--force removes it all the same)");
    removeNamedMutex(mutex);
}

int run(const Arguments& arguments) {
    const auto toRemove = arguments.argumentOf("remove");
    const auto toRelease = arguments.argumentOf("release");
    if ((toRemove || toRelease) && !arguments.operands().empty())
        throw UsageError("--remove and --release take one name");
    if (toRemove && toRelease)
        throw UsageError("--remove and --release exclude each other");
    if (toRemove)
        remove(namedMutex(*toRemove), arguments.has("force"));
    else if (toRelease)
        releaseNamedMutex(namedMutex(*toRelease));
    else
        list(selected(arguments.operands()));
    return Exit::Success;
}

std::vector<std::string> names(std::span<const std::string>) {
    std::vector<std::string> found;
    for (const NamedMutex& mutex : namedMutexes())
        found.push_back(mutex.name);
    return found;
}

} // namespace

extern const Command mutexes;
constinit const Command mutexes{
    .name = "mutexes",
    .operands = "[NAME...]",
    .summary = "List the named mutexes of this machine with their counts",
    .details =
        "A named mutex outlives every process that used it, so one whose owner was killed stays\n"
        "taken: --release gives it back to those who wait for it, --remove lets the next\n"
        "program that asks for the name start anew.",
    .options = options,
    .run = run,
    .complete = names,
};

} // namespace Kx
