#include "files/mainbundle.h"

#include "platform/imagelist.h"

#include <string>
#include <string_view>
#include <vector>

namespace Korvex {

namespace {

std::string executablePath() {
    const std::vector<LoadedImage> images = loadedImages().images();
    return images.empty() ? std::string() : images.front().path;
}

Cf::Owned<CFURLRef> urlOf(std::string_view path, bool isFolder) {
    return Cf::Owned<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
        static_cast<CFIndex>(path.size()), isFolder ? 1 : 0));
}

/// Empty for a path without a folder.
std::string_view folderOf(std::string_view path) {
    constexpr std::string_view root = "/";
    const std::size_t slash = path.rfind('/');
    if (slash == 0)
        return root;
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::string_view bundleOf(std::string_view executable) {
    constexpr std::string_view inside = "/Contents/MacOS";
    const std::string_view folder = folderOf(executable);
    const std::string_view around =
        folder.ends_with(inside) ? folder.substr(0, folder.size() - inside.size()) : folder;
    return around.ends_with(".app") ? around : folder;
}

} // namespace

Cf::Owned<CFURLRef> mainExecutable() {
    return urlOf(executablePath(), false);
}

Cf::Owned<CFURLRef> mainBundle() {
    const std::string executable = executablePath();
    return urlOf(bundleOf(executable), true);
}

} // namespace Korvex
