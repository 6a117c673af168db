#include "table.h"

#include <algorithm>

namespace Kx {

namespace {

constexpr std::size_t gap = 2;

/// Columns on the screen: bytes of UTF-8 that begin a character.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string padded(const std::string& text, Style style, std::size_t width, Align align,
                   bool last) {
    const std::string padding(width - widthOf(text), ' ');
    if (align == Align::Right)
        return padding + styled(text, style);
    return styled(text, style) + (last ? std::string() : padding);
}

} // namespace

void Table::print() const {
    std::vector<std::vector<Cell>> lines(1);
    for (const Column& column : columns)
        lines.front().emplace_back(column.heading, Style::Heading);
    lines.insert(lines.end(), rows.begin(), rows.end());

    std::vector<std::size_t> widths(columns.size());
    for (std::vector<Cell>& line : lines) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            line[i].text = printable(line[i].text);
            widths[i] = std::max(widths[i], widthOf(line[i].text));
        }
    }
    for (const std::vector<Cell>& line : lines) {
        std::string shown;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            shown += i == 0 ? std::string() : std::string(gap, ' ');
            shown += padded(line[i].text, line[i].style, widths[i], columns[i].align,
                            i + 1 == columns.size());
        }
        Kx::print(shown + '\n');
    }
}

} // namespace Kx
