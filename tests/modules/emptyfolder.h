#pragma once

#include <sys/mount.h>

namespace KxTest {

/// Hides a folder of the machine behind an empty one while it lives, for the test program and what
/// it starts.
class EmptyFolderOver {
public:
    explicit EmptyFolderOver(const char* folder) : path(folder) {
        mounted = mount("none", path, "tmpfs", 0, nullptr) == 0;
    }
    ~EmptyFolderOver() {
        if (mounted)
            umount(path);
    }
    EmptyFolderOver(const EmptyFolderOver&) = delete;
    EmptyFolderOver& operator=(const EmptyFolderOver&) = delete;

    bool mounted = false;

private:
    const char* path;
};

} // namespace KxTest
