#pragma once

#include "output.h"

#include <string>
#include <vector>

namespace Kx {

enum class Align { Left, Right };

struct Column {
    std::string heading;
    Align align = Align::Left;
};

struct Cell {
    Cell(std::string shown, Style in = Style::Plain) : text(std::move(shown)), style(in) {}

    std::string text; ///< UTF-8; control characters are escaped when it is printed
    Style style;
};

/// Rows under headings, each column as wide as its widest text.
class Table {
public:
    explicit Table(std::vector<Column> headings) : columns(std::move(headings)) {}

    /// Adds a row of as many cells as there are columns.
    void add(std::vector<Cell> row) { rows.push_back(std::move(row)); }

    [[nodiscard]] bool isEmpty() const { return rows.empty(); }

    /// Prints the headings and all rows.
    void print() const;

private:
    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows;
};

} // namespace Kx
