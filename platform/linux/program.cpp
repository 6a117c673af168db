#include "platform/program.h"

#include "platform/descriptor.h"

#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr std::size_t longestScriptHead = 256;
constexpr int deepestScripts = 5; // as deep as the kernel follows interpreters

bool isExecutableFile(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode) &&
           faccessat(AT_FDCWD, path, X_OK, AT_EACCESS) == 0;
}

/// What the file begins with; nothing when it may be executed but not read.
std::string beginningOf(const char* path) {
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
    std::array<char, longestScriptHead> bytes{};
    const ssize_t got = file.isOpen() ? read(file.get(), bytes.data(), bytes.size()) : 0;
    return {bytes.data(), got > 0 ? static_cast<std::size_t>(got) : 0};
}

std::string interpreterOf(std::string_view script) {
    const std::string_view line = script.substr(2, script.find('\n') - 2);
    const std::size_t begin = line.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return {};
    return std::string(line.substr(begin, line.find_first_of(" \t", begin) - begin));
}

/// Whether someone has told the kernel about formats of other programs.
bool hasRegisteredFormats() {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/sys/fs/binfmt_misc"), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name[0] != '.' && name != "register" && name != "status")
            return true;
    }
    return false;
}

bool isRunnable(const char* path, int scripts) {
    if (!isExecutableFile(path))
        return false;
    const std::string beginning = beginningOf(path);
    if (beginning.starts_with("#!"))
        return scripts < deepestScripts &&
               isRunnable(interpreterOf(beginning).c_str(), scripts + 1);
    // What cannot be read is left to the system to judge.
    return beginning.empty() ? access(path, R_OK) != 0
                             : beginning.starts_with("\177ELF") || hasRegisteredFormats();
}

} // namespace

bool isRunnable(const char* path) {
    return isRunnable(path, 0);
}

} // namespace Korvex
