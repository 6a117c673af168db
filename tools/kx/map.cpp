#include "command.h"
#include "diskproperties.h"
#include "table.h"

#include <KxQts/disk/sectormap.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Kx {

namespace {

/// A file's map.
struct Map {
    KX_DEV_VOL_UNION volume{};
    long long size = 0;
    std::vector<BLK_CHUNK> runs;
};

std::string reasonFor(int result) {
    switch (result) {
    case -1:
        return "it has no map: a hole, no plain file, or a file system that does not tell";
    case 19:
        return "its disk is not known";
    case 87:
        return "it lies on no disk of this machine";
    default:
        return result > 0 && result < 60 ? std::strerror(result)
                                         : "error " + std::to_string(result);
    }
}

Map mapOf(const std::string& path) {
    // Paths are bytes to the library, in characters of eight bits.
    const QString name = QString::fromLatin1(path.c_str());
    Map map;
    unsigned count = 0;
    int result = getFileSectorInfo(name, map.volume, map.size, count, nullptr);
    while (result == 0 || (result == EINVAL && count > map.runs.size())) {
        map.runs.resize(count);
        result = getFileSectorInfo(name, map.volume, map.size, count, map.runs.data());
        if (result == 0)
            break; // it has not grown since it was counted
    }
    if (result != 0)
        throw Failure(path + ": " + reasonFor(result));
    map.runs.resize(count);
    return map;
}

std::string nodeName(KX_DEV_VOL_UNION volume) {
    const std::string whole = "disk" + std::to_string(volume.deviceNumber);
    return volume.volumeNumber == 0 ? whole : whole + 's' + std::to_string(volume.volumeNumber);
}

/// Where the runs lie between the first and the last block of a device.
std::string bar(const std::vector<BLK_CHUNK>& runs, long long blocks) {
    constexpr long long width = 64;
    std::string drawn(width, '.');
    if (blocks <= 0)
        return drawn;
    const auto cellOf = [&](long long block) {
        return static_cast<std::size_t>(
            std::clamp(static_cast<long long>(static_cast<double>(block) /
                                              static_cast<double>(blocks) * width),
                       0LL, width - 1));
    };
    for (const BLK_CHUNK& run : runs) {
        const std::size_t first = cellOf(run.startBlock);
        const std::size_t last = cellOf(run.startBlock + run.blockCount - 1);
        drawn.replace(first, last - first + 1, last - first + 1, '#');
    }
    return drawn;
}

void show(const std::string& path) {
    const Map map = mapOf(path);
    const std::string node = nodeName(map.volume);
    const DiskProperties disk(node);
    const auto blockSize =
        static_cast<long long>(disk.areKnown() ? disk.number("DAMediaBlockSize") : 0);
    print(printable(path) + ": " + std::to_string(map.size) + " bytes on /dev/" + node +
          ", blocks of " + std::to_string(blockSize) + " bytes\n");
    Table table({{"RUN", Align::Right},
                 {"IN THE FILE", Align::Right},
                 {"FIRST BLOCK", Align::Right},
                 {"BLOCKS", Align::Right},
                 {"SIZE", Align::Right}});
    long long place = 0;
    for (std::size_t i = 0; i < map.runs.size(); ++i) {
        const BLK_CHUNK& run = map.runs[i];
        table.add({std::to_string(i + 1), std::to_string(place), std::to_string(run.startBlock),
                   std::to_string(run.blockCount),
                   sizeText(static_cast<unsigned long long>(run.blockCount * blockSize))});
        place += run.blockCount * blockSize;
    }
    table.print();
    const auto size = static_cast<long long>(disk.areKnown() ? disk.number("DAMediaSize") : 0);
    print('[' + bar(map.runs, blockSize > 0 ? size / blockSize : 0) + "]\n");
}

int run(const Arguments& arguments) {
    if (arguments.operands().empty())
        throw UsageError("which file?");
    for (const std::string& path : arguments.operands())
        show(path);
    return Exit::Success;
}

} // namespace

extern const Command map;
constinit const Command map{
    .name = "map",
    .operands = "FILE...",
    .summary = "Show where a file's data lies on its disk",
    .details =
        "The runs of consecutive blocks in the order of the file, and a drawing of the volume's\n"
        "whole device in which # is where the file has blocks.",
    .options = {},
    .run = run,
};

} // namespace Kx
