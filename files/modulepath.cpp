#include <KxQts/files/knowndirectories.h>

#include "platform/imagelist.h"

#include <algorithm>
#include <mutex>
#include <set>

namespace Korvex {

namespace {

/// Keeps a path for as long as the process lives, so that callers may keep the pointer.
const char* kept(const std::string& path) {
    static auto* const mutex = new std::mutex;
    static auto* const paths = new std::set<std::string>;
    const std::lock_guard guard(*mutex);
    return paths->insert(path).first->c_str();
}

} // namespace

const char* getModulePath() {
    const std::vector<LoadedImage> images = loadedImages().images();
    if (images.size() < 2)
        return nullptr;
    const void* const own = loadedImages().ownHeader();
    const auto found = std::find_if(images.begin() + 1, images.end(),
                                    [&](const LoadedImage& image) { return image.header == own; });
    return found == images.end() ? nullptr : kept(found->path);
}

} // namespace Korvex
