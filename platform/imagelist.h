#pragma once

#include <string>
#include <vector>

namespace Korvex {

/// A program or library in the memory of this process.
struct LoadedImage {
    std::string path;   ///< Bytes as the system takes them
    const void* header; ///< Where its first byte lies
};

/// What is loaded into this process. Any thread may ask; others may load and unload meanwhile.
class ImageList {
public:
    virtual ~ImageList() = default;

    /// Everything that is loaded, the main program first. Throws `std::bad_alloc` without memory;
    /// fails in no other way.
    [[nodiscard]] virtual std::vector<LoadedImage> images() = 0;

    /// The header of the image that this code is part of.
    [[nodiscard]] virtual const void* ownHeader() = 0;
};

/// The list in force.
ImageList& loadedImages();

} // namespace Korvex
