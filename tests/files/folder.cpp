#include "files/folder.h"

#include "common/unprivileged.h"

#include <sys/mount.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

namespace KxTest {

void InOwnFolder::SetUp() {
    previous = fs::current_path();
    // A child without root's rights must be able to get here.
    fs::permissions(previous, fs::perms::others_exec, fs::perm_options::add);
    std::string name = (previous / "files-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    giveToOrdinaryUser(folder.c_str());
    fs::current_path(folder);
}

void InOwnFolder::TearDown() {
    fs::current_path(previous);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

std::string InOwnFolder::makeFile(const std::string& name, const std::string& contents) const {
    std::string path = (folder / name).string();
    std::ofstream(path, std::ios::binary) << contents;
    chmod(path.c_str(), 0644);
    giveToOrdinaryUser(path.c_str());
    return path;
}

std::string InOwnFolder::makeFolder(const std::string& name) const {
    std::string path = (folder / name).string();
    fs::create_directory(path);
    giveToOrdinaryUser(path.c_str());
    return path;
}

bool InOwnFolder::isThere(const std::string& path) {
    struct stat found {};
    return lstat(path.c_str(), &found) == 0;
}

unsigned InOwnFolder::modeOf(const std::string& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
}

SmallFileSystem::SmallFileSystem(const std::string& folder, unsigned kibibytes)
    : place(folder),
      mounted(mount("none", folder.c_str(), "tmpfs", 0,
                    ("mode=0777,size=" + std::to_string(kibibytes) + "k").c_str()) == 0) {}

SmallFileSystem::~SmallFileSystem() {
    if (mounted)
        umount2(place.c_str(), MNT_DETACH);
}

} // namespace KxTest
