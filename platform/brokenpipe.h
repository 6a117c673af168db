#pragma once

#include <csignal>

namespace Korvex {

/// Keeps the calling thread from being ended by `SIGPIPE` while it lives: writing to a peer that
/// went away fails, nothing more. The thread's signal mask is afterwards what it was, and no such
/// signal waits that did not wait before.
class BrokenPipeGuard {
public:
    BrokenPipeGuard();
    ~BrokenPipeGuard();

    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

private:
    sigset_t previous{};
};

} // namespace Korvex
