#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Korvex {

/// A process of this machine.
struct ProcessEntry {
    int id = 0;
    int parent = 0;
    unsigned user = 0; ///< Whom it acts for
    std::string name;  ///< Its command's, as far as the system keeps it: 15 bytes on Linux
    std::uint64_t startTime = 0;
    bool hasEnded = false;       ///< Only its parent has not noticed yet
    bool isKernelThread = false; ///< No program
    bool isService = false;      ///< Run by the machine's service manager
};

/// The processes of this machine. Any thread may call any operation.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// Lists the processes, by their ids. One that ends meanwhile may be left out.
    /// \return 0, or the system's error number with \a processes empty.
    [[nodiscard]] virtual int read(std::vector<ProcessEntry>& processes) = 0;

    /// Asks a process politely to end. Never reaches another one that has its id by now.
    /// \return 0, or the system's error number: 3 when it is gone.
    [[nodiscard]] virtual int askToEnd(const ProcessEntry& process) = 0;
};

/// The table in force.
ProcessTable& processTable();

} // namespace Korvex
