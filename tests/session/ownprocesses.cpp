// Nothing that these tests do may reach the machine that they run on: no request to restart it, no
// signal to its processes. So the program starts itself anew in namespaces of its own before main,
// and hides the machine's system bus there.

#include "session/ownprocesses.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <sys/mount.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* mark = "KXQTS_TEST_ON_ITS_OWN";

/// Process 1 of the new namespace is a shell, which collects what others leave behind.
__attribute__((constructor)) void startOnOurOwn(int argc, char** argv, char**) {
    if (getenv(mark))
        return;
    setenv(mark, "1", 1);
    std::vector<const char*> words{
        "unshare", "--pid", "--mount-proc", "--fork",          "--net", "--kill-child",
        "--",      "sh",    "-c",           "\"$@\"; exit $?", "sh"};
    if (geteuid() != 0)
        words.insert(words.begin() + 1, "--map-root-user");
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    words.push_back(self.c_str());
    words.insert(words.end(), argv + 1, argv + argc);
    words.push_back(nullptr);
    execvp(words[0], const_cast<char**>(words.data()));
    perror("unshare");
    _exit(127);
}

/// Whether a bus was hidden that might be there.
bool busIsHidden = true;

class NoBusOfTheMachine : public testing::Environment {
    void SetUp() override {
        unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        for (const char* folder : {"/run/dbus", "/var/run/dbus"}) {
            if (std::filesystem::exists(folder))
                busIsHidden &= mount("none", folder, "tmpfs", 0, nullptr) == 0;
        }
    }
};

const auto* const registered = testing::AddGlobalTestEnvironment(new NoBusOfTheMachine);

} // namespace

bool KxTest::isOnItsOwn() {
    return getppid() == 1 && busIsHidden && !std::filesystem::exists("/run/dbus/system_bus_socket");
}
