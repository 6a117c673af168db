#include "platform/linux/volumefolder.h"

#include "platform/rootfolder.h"
#include "platform/scopes.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvex::VolumeFolder {

namespace {

constexpr mode_t forEveryone = 0755;
constexpr int mostOfOneName = 100;

const std::string& parent() {
    static const auto* const folder = new std::string((rootFolder() + "/Volumes").toStdString());
    return *folder;
}

/// Labels are whatever someone wrote to a medium.
std::string asFileName(std::string name) {
    std::replace(name.begin(), name.end(), '/', ':');
    return name == "." || name == ".." ? '_' + name : name;
}

} // namespace

std::string make(const std::string& name) {
    if (mkdir(parent().c_str(), forEveryone) != 0 && errno != EEXIST)
        return {};
    const std::string first = parent() + '/' + asFileName(name);
    std::string path = first;
    for (int number = 1; mkdir(path.c_str(), forEveryone) != 0; ++number) {
        if (errno != EEXIST || number == mostOfOneName)
            return {};
        path = first + ' ' + std::to_string(number);
    }
    return path;
}

void remove(const std::string& path) {
    const ErrorNumberKept meanwhile;
    if (path.starts_with(parent() + '/'))
        rmdir(path.c_str());
}

} // namespace Korvex::VolumeFolder
