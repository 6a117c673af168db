#pragma once

#include "platform/processtable.h"
#include "platform/replaceable.h"

#include <unistd.h>

namespace KxTest {

/// The processes of a machine that a test describes. They are in force while they live.
class ScriptedProcessTable : public Korvex::ProcessTable {
public:
    std::vector<Korvex::ProcessEntry> processes;
    int readError = 0;
    int askError = 0;
    std::vector<int> asked; ///< Whom the library asked to end, by id

    /// Adds a process of the caller's user. \return It, to be changed.
    Korvex::ProcessEntry& add(int id, const char* name) {
        Korvex::ProcessEntry process;
        process.id = id;
        process.parent = 1;
        process.user = geteuid();
        process.name = name;
        return processes.emplace_back(process);
    }

    [[nodiscard]] int read(std::vector<Korvex::ProcessEntry>& all) override {
        all = readError == 0 ? processes : std::vector<Korvex::ProcessEntry>();
        return readError;
    }
    [[nodiscard]] int askToEnd(const Korvex::ProcessEntry& process) override {
        asked.push_back(process.id);
        return askError;
    }

private:
    Korvex::Replacement<Korvex::ProcessTable> inForce{*this};
};

} // namespace KxTest
