#pragma once

#include <map>
#include <set>
#include <string>

namespace KxTest {

/// What a process holds of the things that outlive a careless function: everything that a test must
/// leave as it found it.
struct Resources {
    std::map<int, std::string> descriptors; ///< By number: what each is open on
    std::set<std::string> threads;
    std::set<std::string> children;
    std::set<std::string> semaphoreSets;   ///< System V, by identifier
    std::set<std::string> namedSemaphores; ///< POSIX
    std::set<std::string> runTimeFiles;    ///< Below the library's run-time folder

    static Resources now();

    /// What \a later has that this has not, and the other way round; empty when they agree.
    [[nodiscard]] std::string differenceTo(const Resources& later) const;
};

} // namespace KxTest
