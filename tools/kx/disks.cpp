#include "command.h"
#include "diskproperties.h"
#include "table.h"

#include "platform/disknames.h"

#include <algorithm>

namespace Kx {

namespace {

using Korvex::DiskNode;

/// What a row of the table needs: a disk, and what the library says about it.
struct Disk {
    DiskNode node;
    DiskProperties properties;
};

std::vector<Disk> allDisks() {
    std::vector<Disk> disks;
    for (const DiskNode& node : Korvex::diskNodes()) {
        DiskProperties properties(node.name());
        if (properties.areKnown())
            disks.push_back({node, std::move(properties)});
    }
    return disks;
}

std::vector<Disk> selected(const std::vector<std::string>& names) {
    if (names.empty())
        return allDisks();
    std::vector<Disk> disks;
    for (const std::string& name : names) {
        const auto node = Korvex::diskNode(name.starts_with("/dev/") ? name.substr(5) : name);
        DiskProperties properties(node ? node->name() : name);
        if (!node || !properties.areKnown())
            throw Failure("there is no disk " + name);
        disks.push_back({*node, std::move(properties)});
    }
    return disks;
}

std::string traitsOf(const DiskProperties& properties) {
    std::string traits = properties.text("DADeviceProtocol");
    const auto add = [&](bool isIt, const char* trait) {
        if (isIt)
            traits += (traits.empty() ? "" : ", ") + std::string(trait);
    };
    add(properties.flag("DADeviceInternal"), "internal");
    add(properties.flag("DAMediaRemovable"), "removable");
    add(properties.flag("DAMediaEjectable"), "ejectable");
    add(!properties.flag("DAMediaWritable"), "read-only");
    return traits;
}

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

int run(const Arguments& arguments) {
    Table table({{"IDENTIFIER"},
                 {"NODE"},
                 {"DEVICE"},
                 {"SIZE", Align::Right},
                 {"CONTENTS"},
                 {"NAME"},
                 {"MOUNTED ON"},
                 {"PROPERTIES"}});
    for (const Disk& disk : selected(arguments.operands())) {
        const DiskProperties& properties = disk.properties;
        table.add({identifierText(disk.node.disk, disk.node.slice),
                   (disk.node.slice == 0 ? "" : "  ") + disk.node.name(), disk.node.path,
                   sizeText(properties.number("DAMediaSize")),
                   orDash(properties.text("DAMediaContent")),
                   orDash(properties.text("DAVolumeName")), orDash(properties.text("DAVolumePath")),
                   traitsOf(properties)});
    }
    if (!table.isEmpty())
        table.print();
    return Exit::Success;
}

std::vector<std::string> names(std::span<const std::string>) {
    std::vector<std::string> found;
    for (const DiskNode& node : Korvex::diskNodes())
        found.push_back(node.name());
    return found;
}

} // namespace

extern const Command disks;
constinit const Command disks{
    .name = "disks",
    .operands = "[NAME...]",
    .summary = "List the disks and their slices with their names and numbers",
    .details =
        "Disks are called diskN, their slices diskNsM; these names stay while a disk is attached\n"
        "and are the same in every program. The identifier is the number that programs use.",
    .options = {},
    .run = run,
    .complete = names,
};

} // namespace Kx
