#pragma once

#include "modules/emptyfolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace KxTest {

/// An empty /tmp of the test's own, for calls that use fixed names there, and a folder of programs
/// that come first in `PATH`. What is kept about the session is gone with it, too.
class OwnWorld {
public:
    OwnWorld() {
        std::filesystem::create_directories(folder + "/bin");
        setenv("PATH", (folder + "/bin:" + before).c_str(), 1);
    }
    ~OwnWorld() { setenv("PATH", before.c_str(), 1); }
    OwnWorld(const OwnWorld&) = delete;
    OwnWorld& operator=(const OwnWorld&) = delete;

    /// Adds a program that is a script of the shell.
    void addScript(const std::string& name, const std::string& text) const {
        const std::string path = folder + "/bin/" + name;
        std::ofstream(path) << "#!/bin/sh\n" << text;
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    /// Adds a program that is there already.
    void addProgram(const std::string& name, const std::string& path) const {
        std::filesystem::create_symlink(path, folder + "/bin/" + name);
    }

    const EmptyFolderOver temporary{"/tmp"};
    const std::string folder = "/tmp/world";

private:
    const std::string before = std::getenv("PATH");
};

} // namespace KxTest
