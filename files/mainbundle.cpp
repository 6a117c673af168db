#include "files/mainbundle.h"

#include "platform/imagelist.h"

#include <string_view>
#include <vector>

namespace Korvex {

namespace {

std::string_view folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

} // namespace

std::string mainBundle() {
    const std::vector<LoadedImage> images = loadedImages().images();
    const std::string_view program = images.empty() ? std::string_view() : images.front().path;
    if (program.empty())
        return {};
    const std::string_view folder = folderOf(program);
    constexpr std::string_view inside = "/Contents/MacOS";
    if (folder.ends_with(inside)) {
        const std::string_view bundle = folder.substr(0, folder.size() - inside.size());
        if (bundle.ends_with(".app"))
            return std::string(bundle);
    }
    return folder.empty() ? "/" : std::string(folder);
}

} // namespace Korvex
