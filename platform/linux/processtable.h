#pragma once

#include "platform/processtable.h"

#include <optional>

namespace Korvex {

/// The processes that `/proc` shows.
class LinuxProcessTable final : public ProcessTable {
public:
    /// \param processFolder What stands for "/proc".
    explicit LinuxProcessTable(const char* processFolder = "/proc") : folder(processFolder) {}

    [[nodiscard]] int read(std::vector<ProcessEntry>& processes) override;
    [[nodiscard]] int askToEnd(const ProcessEntry& process) override;

    /// One process. \return Nothing when there is none of that id (any more).
    [[nodiscard]] std::optional<ProcessEntry> find(int id) const;

private:
    [[nodiscard]] std::string pathOf(int id, const char* file) const;
    [[nodiscard]] unsigned effectiveUserOf(int id) const;
    [[nodiscard]] bool isServiceProcess(int id) const;

    const char* const folder; // no string: what outlives main may still ask
};

} // namespace Korvex
