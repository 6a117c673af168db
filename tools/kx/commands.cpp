#include "command.h"

#include <algorithm>
#include <array>

namespace Kx {

// A subcommand is defined in the file of its name, and has one line here and one in the table.
extern const Command disks;
extern const Command loginItems;
extern const Command map;
extern const Command mutexes;
extern const Command reg;
extern const Command system;
extern const Command volumes;

namespace {

constexpr std::array table{
    &disks, &loginItems, &map, &mutexes, &reg, &system, &volumes,
};

} // namespace

std::span<const Command* const> commands() {
    return table;
}

const Command* commandNamed(std::string_view name) {
    const auto* const found = std::find_if(
        table.begin(), table.end(), [&](const Command* command) { return command->name == name; });
    return found == table.end() ? nullptr : *found;
}

} // namespace Kx
