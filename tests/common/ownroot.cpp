// Some paths are fixed and lie where no test may write. Where the rights suffice, a test program
// has a root folder of its own, in its own mount namespace: everything of the machine's is there,
// beside new folders in memory.

#include "common/ownroot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr char utility[] = "/usr/sbin/diskutil";
// Not in the scratch folder, which is removed with all that is found in it.
constexpr char place[] = "/mnt";

bool ownRoot = false;

void require(bool isDone, const std::string& what) {
    if (!isDone)
        throw std::runtime_error("a root folder of the test's own: " + what);
}

void bindOne(const fs::path& source, const fs::path& target) {
    if (fs::is_directory(source))
        fs::create_directories(target);
    else
        std::ofstream{target};
    require(mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
            "bind " + source.string());
}

void mountMemory(const fs::path& at) {
    require(mount("none", at.c_str(), "tmpfs", 0, "mode=755") == 0, "mount at " + at.string());
}

/// Fills a new root folder with all of the machine's, which it shows unchanged.
void mirrorRoot(const fs::path& into) {
    for (const auto& entry : fs::directory_iterator("/")) {
        const fs::path target = into / entry.path().filename();
        if (entry.is_symlink())
            fs::copy_symlink(entry.path(), target);
        else if (entry.path() != place)
            bindOne(entry.path(), target);
    }
}

/// Makes room beside the machine's programs.
void replacePrograms(const fs::path& root) {
    const fs::path original = fs::path(place) / "programs";
    const fs::path programs = "/usr/sbin";
    bindOne(programs, root.string() + original.string());
    mountMemory(root.string() + programs.string());
    for (const auto& entry : fs::directory_iterator(programs))
        fs::create_symlink(original / entry.path().filename(),
                           root.string() + entry.path().string());
    fs::remove(root.string() + utility); // the machine's own, if there is one
}

class OwnRoot : public testing::Environment {
    void SetUp() override {
        if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0)
            return;
        require(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "privacy");
        const fs::path scratch = fs::current_path();
        mountMemory(place);
        const fs::path root = fs::path(place) / "root";
        fs::create_directory(root);
        mirrorRoot(root);
        replacePrograms(root);
        fs::create_directory(root / "Korvex");
        require(chroot(root.c_str()) == 0, "change to it");
        fs::current_path(scratch);
        ownRoot = true;
    }
};

const auto* const registered = testing::AddGlobalTestEnvironment(new OwnRoot);

} // namespace

namespace KxTest {

bool hasOwnRoot() {
    return ownRoot;
}

void placeDiskUtility(const std::string& program) {
    removeDiskUtility();
    fs::create_symlink(program, utility);
}

void placeDiskUtilityScript(const std::string& script) {
    removeDiskUtility();
    std::ofstream(utility) << "#!/bin/sh\n" << script << '\n';
    fs::permissions(utility, fs::perms(0755));
}

void removeDiskUtility() {
    fs::remove(utility);
}

} // namespace KxTest
