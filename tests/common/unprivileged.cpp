#include "common/unprivileged.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace KxTest {

namespace {

bool giveUpRights() {
    if (geteuid() != 0)
        return true;
    return setgroups(0, nullptr) == 0 && setresgid(ordinaryUser, ordinaryUser, ordinaryUser) == 0 &&
           setresuid(ordinaryUser, ordinaryUser, ordinaryUser) == 0;
}

[[noreturn]] void runChecks(const std::function<void()>& checks) {
    if (!giveUpRights())
        ADD_FAILURE() << "root's rights could not be given up";
    else
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

} // namespace

testing::AssertionResult asOrdinaryUser(const std::function<void()>& checks) {
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

void giveToOrdinaryUser(const char* path) {
    if (geteuid() == 0 && lchown(path, ordinaryUser, ordinaryUser) != 0)
        ADD_FAILURE() << path << " could not be given away";
}

} // namespace KxTest
