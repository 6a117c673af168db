#include "target.h"

#include "failure.h"
#include "text.h"

#include <optional>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace DiskUtil {

using Korvex::DiskNode;

namespace {

std::optional<DiskNode> nodeMountedAt(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    std::optional<DiskNode> found;
    for (const Korvex::Mount& mount : Korvex::mounts()) {
        if (mount.target == path)
            found = mount.node(); // the last one hides the others
    }
    return found;
}

std::optional<DiskNode> nodeAtPath(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode))
        return Korvex::diskNodeOfDevice(major(status.st_rdev), minor(status.st_rdev));
    constexpr std::string_view folder = "/dev/";
    return path.starts_with(folder) ? Korvex::diskNode(path.substr(folder.size())) : std::nullopt;
}

std::optional<DiskNode> nodeOfDevice(const std::string& word) {
    if (word.starts_with('/')) {
        auto node = nodeMountedAt(word);
        return node ? node : nodeAtPath(word);
    }
    if (auto node = Korvex::diskNode(word))
        return node;
    for (DiskNode& node : Korvex::diskNodes()) {
        if (node.systemName == word)
            return std::move(node);
    }
    return std::nullopt;
}

std::optional<Volume> volumeCalled(const std::string& name) {
    std::optional<Volume> found;
    for (Volume& volume : allVolumes()) {
        if (name.empty() || volume.name() != name)
            continue;
        if (found)
            throw Failure("several volumes are named " + printable(name) + ": " +
                          found->node.name() + ", " + volume.node.name());
        found = std::move(volume);
    }
    return found;
}

} // namespace

Volume volumeNamed(const std::string& word) {
    const std::vector<std::string> readings = readingsOf(word);
    for (const std::string& reading : readings) {
        if (const auto node = nodeOfDevice(reading))
            return volumeOn(*node);
    }
    for (const std::string& reading : readings) {
        if (auto volume = volumeCalled(reading))
            return std::move(*volume);
    }
    throw Failure("there is no disk or volume " + printable(word));
}

} // namespace DiskUtil
