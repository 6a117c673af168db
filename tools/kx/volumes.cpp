#include "command.h"
#include "diskproperties.h"
#include "table.h"

#include "platform/disknames.h"
#include "platform/volumetable.h"

namespace Kx {

namespace {

using Korvex::Volume;

std::string traitsOf(const Volume& volume) {
    if (volume.backing.isNetworked)
        return "networked";
    const DiskProperties properties(volume.backing.device);
    if (!properties.areKnown())
        return "-";
    std::string traits = properties.text("DAVolumeKind");
    for (const auto& [key, trait] :
         {std::pair{"DAMediaRemovable", ", removable"}, {"DADeviceInternal", ", internal"}}) {
        if (properties.flag(key))
            traits += trait;
    }
    return properties.flag("DAMediaWritable") ? traits : traits + ", read-only";
}

int run(const Arguments& arguments) {
    if (!arguments.operands().empty())
        throw UsageError("there are no operands");
    Table table({{"IDENTIFIER"}, {"NODE"}, {"DEVICE"}, {"NAME"}, {"MOUNTED ON"}, {"PROPERTIES"}});
    for (const Volume& volume : Korvex::volumeTable().volumes()) {
        const auto node = Korvex::diskNode(volume.backing.device);
        table.add({node ? identifierText(node->disk, node->slice) : "-",
                   node ? "/dev/" + node->name() : "-", node ? node->path : "-",
                   volume.name.toUtf8().toStdString(), volume.root, traitsOf(volume)});
    }
    if (!table.isEmpty())
        table.print();
    return Exit::Success;
}

} // namespace

extern const Command volumes;
constinit const Command volumes{
    .name = "volumes",
    .operands = "",
    .summary = "List the mounted volumes in the order in which they were mounted",
    .details =
        "These are the file systems on disks, each once, and those behind a network. The node\n"
        "is the name that programs use, the device what it is called on this system.",
    .options = {},
    .run = run,
};

} // namespace Kx
