#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace Kx {

/// A named mutex of this machine: a POSIX named semaphore, which outlives every process that uses
/// it.
struct NamedMutex {
    std::string name;         ///< With its leading slash
    std::optional<int> count; ///< How often it can be taken; unknown when it may not be read
    std::string owner;        ///< The user who made it
    time_t made = 0;
    std::vector<pid_t> users;   ///< Processes that have it open, as far as they may be looked into
    bool allUsersKnown = false; ///< Whether every process could be looked into
};

/// All of them, by name.
[[nodiscard]] std::vector<NamedMutex> namedMutexes();

/// The one of a name, which may lack the leading slash. Throws \ref Failure when there is none.
[[nodiscard]] NamedMutex namedMutex(std::string_view name);

/// Takes a name out of the system. Processes that have the mutex open keep it; whoever asks for the
/// name from now on gets another. Throws \ref Failure.
void removeNamedMutex(const NamedMutex& mutex);

/// Raises the count by one, as its owner would. Throws \ref Failure.
void releaseNamedMutex(const NamedMutex& mutex);

} // namespace Kx
