#pragma once

#include <csignal>

namespace DiskUtil {

/// Keeps this program from being ended by its user or its session while it lives, so that what has
/// been begun is finished or undone. What came in meanwhile has its effect then.
class SignalsBlocked {
public:
    SignalsBlocked();
    ~SignalsBlocked();
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before{};
};

} // namespace DiskUtil
