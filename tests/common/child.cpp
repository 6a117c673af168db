#include "common/child.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace KxTest {

namespace {

[[noreturn]] void runChecks(const std::function<void()>& checks) {
    checks();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

int waitForEnd(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

/// Also without root's rights, where the machine lets users have namespaces.
bool leaveIpcNamespace() {
    constexpr int own = CLONE_NEWIPC | CLONE_NEWNS;
    return (unshare(own) == 0 || unshare(own | CLONE_NEWUSER) == 0) &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", "/dev/shm", "tmpfs", 0, nullptr) == 0;
}

} // namespace

testing::AssertionResult inChild(const std::function<void()>& checks) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        return testing::AssertionFailure() << "no child process";
    if (child == 0)
        runChecks(checks);
    const int status = waitForEnd(child);
    if (status == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the child ended with status " << status;
}

testing::AssertionResult inFreshIpcNamespace(const std::function<void()>& checks) {
    return inChild([&] {
        ASSERT_TRUE(leaveIpcNamespace()) << "this machine gives nobody a namespace";
        checks();
    });
}

} // namespace KxTest
