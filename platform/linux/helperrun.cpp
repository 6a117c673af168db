#include "platform/linux/helperrun.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Korvex {

namespace {

/// What `pkexec` ends with when it does not run the helper.
enum { Dismissed = 126, Refused = 127 };

/// Attributes of a program that begins with no signal blocked, whatever the calling thread does.
class NoSignalsBlocked {
public:
    NoSignalsBlocked() {
        sigset_t none{};
        sigemptyset(&none);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~NoSignalsBlocked() { posix_spawnattr_destroy(&attributes); }
    NoSignalsBlocked(const NoSignalsBlocked&) = delete;
    NoSignalsBlocked& operator=(const NoSignalsBlocked&) = delete;

    posix_spawnattr_t attributes{};
};

/// \return What the program ended with; −1 when a signal ended it or it is someone else's by now.
int endOf(pid_t child) {
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, 0)) < 0 && errno == EINTR) {
    }
    return ended == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

OSStatus runHelper(std::vector<const char*> words) {
    words.push_back(nullptr);
    const NoSignalsBlocked begin;
    pid_t child = 0;
    if (posix_spawn(&child, words[0], nullptr, &begin.attributes,
                    const_cast<char* const*>(words.data()), environ) != 0)
        return errAuthorizationToolExecuteFailure;
    switch (endOf(child)) {
    case 0:
        return errAuthorizationSuccess;
    case Dismissed:
        return errAuthorizationCanceled;
    case Refused:
        return errAuthorizationDenied;
    default:
        return errAuthorizationToolExecuteFailure;
    }
}

} // namespace Korvex
