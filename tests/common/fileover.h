#pragma once

#include "common/scratchfile.h"

#include <string>
#include <sys/mount.h>

namespace KxTest {

/// Puts a file in the place of one of the machine's while it lives, for the test program and what
/// it starts.
class FileOver {
public:
    FileOver(const char* place, const std::string& contents) : path(place), file(contents) {
        mounted = mount(file.name.c_str(), path, nullptr, MS_BIND, nullptr) == 0;
    }
    ~FileOver() {
        if (mounted)
            umount(path);
    }
    FileOver(const FileOver&) = delete;
    FileOver& operator=(const FileOver&) = delete;

    bool mounted = false;

private:
    const char* path;
    const ScratchFile file;
};

} // namespace KxTest
