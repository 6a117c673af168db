#include "commands.h"
#include "size.h"
#include "text.h"
#include "volume.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace DiskUtil {

namespace {

using Row = std::array<std::string, 6>;

std::string kindOf(const Volume& volume) {
    return volume.contents.type.empty() ? volume.contents.tableType : volume.contents.type;
}

Row rowOf(const Volume& volume) {
    const std::string size = shownSize(sizeOf(volume.node));
    return {(volume.node.slice == 0 ? "" : "  ") + volume.node.name(),
            volume.node.systemName,
            size.substr(0, size.find(" (")),
            printable(kindOf(volume)),
            printable(volume.name()),
            volume.isMounted() ? printable(volume.mounts.front().target) : ""};
}

/// Columns on the screen: bytes of UTF-8 that begin a character.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void print(const std::vector<Row>& rows) {
    constexpr std::size_t gap = 2;
    std::array<std::size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]) + gap);
    }
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - widthOf(row[i]), ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        std::puts(line.c_str());
    }
}

} // namespace

void list(const Operands&) {
    std::vector<Row> rows{{"DISK", "SYSTEM", "SIZE", "CONTENT", "VOLUME", "MOUNTED AT"}};
    for (const Volume& volume : allVolumes())
        rows.push_back(rowOf(volume));
    print(rows);
}

} // namespace DiskUtil
