#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/mount.h>

namespace KxTest {

/// A /tmp of the test's own, for calls that use fixed names there, with a folder of programs that
/// come first in `PATH`. What is kept about the session is gone with it, too.
class OwnWorld {
public:
    /// \param security The program that is to be found under the name "security", if one is.
    explicit OwnWorld(const std::string& security = {}) {
        namespace fs = std::filesystem;
        fs::create_directories("own/world/bin");
        fs::permissions("own", fs::perms(01777));
        if (!security.empty())
            fs::copy_file(security, "own/world/bin/security"); // its folder may be in /tmp
        isMounted = mount("own", "/tmp", nullptr, MS_BIND, nullptr) == 0;
        setenv("PATH", (folder + "/bin:" + before).c_str(), 1);
    }
    ~OwnWorld() {
        setenv("PATH", before.c_str(), 1);
        if (isMounted)
            umount("/tmp");
        std::filesystem::remove_all("own");
    }
    OwnWorld(const OwnWorld&) = delete;
    OwnWorld& operator=(const OwnWorld&) = delete;

    /// Adds a program that is a script of the shell.
    void addScript(const std::string& name, const std::string& text) const {
        const std::string path = "own/world/bin/" + name;
        std::ofstream(path) << "#!/bin/sh\n" << text;
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    bool isMounted = false;
    const std::string folder = "/tmp/world";

private:
    const std::string before = std::getenv("PATH");
};

} // namespace KxTest
