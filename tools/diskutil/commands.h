#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace DiskUtil {

/// What follows the name of a command, word for word: names may begin with a dash.
using Operands = std::vector<std::string>;

struct Command {
    std::string_view name;
    std::string_view usage; ///< Its operands
    std::string_view help;  ///< One line without a full stop
    std::size_t operands;   ///< How many it takes
    /// Does the work; throws \ref Failure or \ref UsageError for everything that goes wrong.
    void (*run)(const Operands&);
};

/// All commands, in the order of the help.
std::span<const Command> commands();

/// \name The commands
/// Each is defined in a file that is named for it.
/// @{
void list(const Operands& operands);
void info(const Operands& operands);
void mountVolume(const Operands& operands);
void unmountVolume(const Operands& operands);
void mountDisk(const Operands& operands);
void unmountDisk(const Operands& operands);
void resizeVolume(const Operands& operands);
/// @}

} // namespace DiskUtil
