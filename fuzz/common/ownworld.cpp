#include "common/ownworld.h"

#include "common/require.h"

#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>

namespace fs = std::filesystem;

namespace {

fs::path& folder() {
    static auto* const path = new fs::path;
    return *path;
}

void removeFolder() {
    std::error_code ignored;
    umount2(folder().c_str(), MNT_DETACH);
    fs::remove_all(folder(), ignored);
}

/// Nobody else sees what is mounted there, and it goes with the process, also after a crash.
void keepInMemory(const fs::path& at) {
    if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        mount("none", at.c_str(), "tmpfs", 0, "mode=700");
}

} // namespace

void KxFuzz::makeOwnWorld() {
    std::string name = (fs::temp_directory_path() / "kxqts-fuzz-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr);
    folder() = name;
    std::atexit(removeFolder);
    keepInMemory(folder());
    for (const auto& [variable, part] : {std::pair("HOME", "home"), {"KXQTS_ROOT", "root"}}) {
        fs::create_directory(folder() / part);
        setenv(variable, (folder() / part).c_str(), 1);
    }
}
