#include "system/mainbundle.h"

#include "files/bundle.h"
#include "platform/imagelist.h"

#include <QFile>
#include <QFileInfo>

namespace Korvex {

namespace {

std::string executablePath() {
    const std::vector<LoadedImage> images = loadedImages().images();
    return images.empty() ? std::string() : images.front().path;
}

Cf::Owned<CFURLRef> url(const std::string& path, bool isFolder) {
    return Cf::Owned<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        isFolder ? 1 : 0));
}

std::string folderOf(const std::string& path) {
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

/// The bundle that an executable's folder is part of; empty for none.
std::string bundleAround(const std::string& folder) {
    constexpr std::string_view inside = "/Contents/MacOS";
    if (!folder.ends_with(inside))
        return {};
    const std::string outer = folder.substr(0, folder.size() - inside.size());
    return outer.ends_with(".app") && isBundle(QFile::decodeName(outer.c_str())) ? outer
                                                                                 : std::string();
}

} // namespace

Cf::Owned<CFURLRef> mainExecutable() {
    return url(executablePath(), false);
}

Cf::Owned<CFURLRef> mainBundle() {
    const std::string executable = executablePath();
    if (executable.find('/') == std::string::npos)
        return Cf::Owned<CFURLRef>();
    const std::string folder = folderOf(executable);
    const std::string bundle = bundleAround(folder);
    return url(bundle.empty() ? folder : bundle, true);
}

} // namespace Korvex
