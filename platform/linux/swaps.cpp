#include "platform/linux/swaps.h"

#include "platform/textfile.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <vector>

namespace Korvex {

namespace {

constexpr int deepestStack = 16; // devices upon devices; more only if the system's files go round

/// The names in a folder.
std::vector<std::string> namesIn(const std::string& path) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    std::vector<std::string> names;
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    return names;
}

/// Whether a device is an encrypting one, or lies on such devices only. \param folder Its own in
/// the kernel's list of devices.
bool isEncrypted(const std::string& folder, int depth) {
    constexpr const char* mark = "CRYPT-"; // what the programs that set up encryption begin with
    if (readTextFile(folder + "/dm/uuid").value_or(std::string()).starts_with(mark))
        return true;
    const std::vector<std::string> below = namesIn(folder + "/slaves");
    bool encrypted = !below.empty() && depth < deepestStack;
    const std::string slaves = folder + "/slaves/";
    for (const std::string& name : below)
        encrypted = encrypted && isEncrypted(slaves + name, depth + 1);
    return encrypted;
}

/// Blanks and the like are written as a backslash and three octal digits.
std::string decoded(const std::string& path) {
    constexpr std::size_t digits = 3;
    constexpr int octal = 8;
    std::string text;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] == '\\') {
            const std::string code = path.substr(i + 1, digits);
            text += static_cast<char>(std::strtol(code.c_str(), nullptr, octal));
            i += digits;
        } else {
            text += path[i];
        }
    }
    return text;
}

/// Whether what is swapped to a device or file is encrypted on its way.
bool isEncryptedSwap(const std::string& root, const std::string& path) {
    struct stat status {};
    if (stat((root + path).c_str(), &status) != 0)
        return false;
    const dev_t device = S_ISBLK(status.st_mode) ? status.st_rdev : status.st_dev;
    return isEncrypted(root + "/sys/dev/block/" + std::to_string(major(device)) + ':' +
                           std::to_string(minor(device)),
                       0);
}

} // namespace

int isSwapEncrypted(const std::string& root, bool& encrypted) {
    const std::optional<std::string> swaps = readTextFile(root + "/proc/swaps");
    if (!swaps)
        return errno;
    std::istringstream lines(*swaps);
    std::string line;
    std::getline(lines, line); // headings
    bool all = true;
    while (std::getline(lines, line))
        all = all && isEncryptedSwap(root, decoded(line.substr(0, line.find_first_of(" \t"))));
    encrypted = all;
    return 0;
}

} // namespace Korvex
