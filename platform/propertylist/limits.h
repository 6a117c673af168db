#pragma once

#include <cstddef>

namespace Korvex::PropertyList {

/// How much a property list may be. What is more is refused alike when it is read and written.
struct Limits {
    /// Levels of containers, the outermost one included. As many as a registry has on Windows;
    /// nothing here needs more stack for more levels.
    std::size_t depth = 512;
    /// Size of a file.
    std::size_t bytes = std::size_t(256) << 20;
    /// Entries and elements of all containers together. Few bytes can stand for very many, when
    /// containers are named again and again.
    std::size_t entries = std::size_t(1) << 24;
};

} // namespace Korvex::PropertyList
