#include "signals.h"

#include <initializer_list>

namespace DiskUtil {

SignalsBlocked::SignalsBlocked() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int each : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGPIPE})
        sigaddset(&ending, each);
    sigprocmask(SIG_BLOCK, &ending, &before);
}

SignalsBlocked::~SignalsBlocked() {
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

} // namespace DiskUtil
