#pragma once

#include "faults/faults.h"

#include <functional>
#include <string>
#include <vector>

namespace KxTest {

/// One way in which one call of the system's can fail.
struct Fault {
    std::string name; ///< As "write: ENOSPC"
    KxFaultCall call;
    int error; ///< What `errno` is then; 0: only a part of a transfer is done
};

/// What `errno` may be behind a call that has reported a failure.
namespace Reported {
inline constexpr int injected = -1000;  ///< The system's own
inline constexpr int untouched = -1001; ///< What it was before the call
inline constexpr int anything = -1002;  ///< Where the contract says nothing of it
} // namespace Reported

/// Some calls of the library's, what must hold when one of the system's fails below them, and what
/// brings back the state from before.
struct Scenario {
    std::string name;

    /// Makes the state in which \ref run is called; before each call.
    std::function<void()> prepare = nullptr;

    /// What is under test. \return Whether it reported success.
    std::function<bool()> run;

    /// Checks what stands after it; \a succeeded is what was reported.
    std::function<void(bool succeeded)> verify = nullptr;

    /// Makes the library give up what it keeps between calls; before memory is compared.
    std::function<void()> forget = nullptr;

    /// Functions of Qt's, by a part of their names, in which memory that is wanting ends the
    /// process; what is allocated below them always succeeds.
    std::vector<const char*> cannotBeTold = {};

    /// Functions of Qt's, by a part of their names, that lose memory when they are left by an
    /// exception.
    std::vector<const char*> leaks = {};

    /// What `errno` may be after a failure; without memory number 12 is right as well wherever a
    /// number is set at all.
    std::vector<int> reports = {Reported::anything};

    /// Whether the calls of the threads count too that work for the library.
    bool onAllThreads = false;
};

/// Runs a scenario with the first call of a kind failing, with the second one failing, and so on
/// until it makes no more of them; for each of some faults. After each run the same is done again
/// without a fault and has to succeed. For each call that fails: it is reported as the scenario
/// says, no exception comes out, \ref Scenario::verify holds, and of memory nothing stays.
///
/// `KXQTS_SHOW_FAULTS` has the counts printed, `KXQTS_SHOW_ORIGINS` whence each call came.
void sweep(const std::vector<Fault>& faults, const Scenario& scenario);

/// Faults that concern everyone who works with files.
std::vector<Fault> fileFaults();
/// Faults of children, threads, pipes and what they need.
std::vector<Fault> processFaults();
/// Faults of connections.
std::vector<Fault> networkFaults();
/// Faults of semaphores.
std::vector<Fault> semaphoreFaults();
/// Want of memory. None where a sanitizer keeps the memory.
std::vector<Fault> memoryFaults();

std::vector<Fault> operator+(std::vector<Fault> some, const std::vector<Fault>& others);

} // namespace KxTest
