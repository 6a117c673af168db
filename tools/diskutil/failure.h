#pragma once

#include <stdexcept>

namespace DiskUtil {

/// What was asked for could not be done. The text ends up on standard error.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The command line makes no sense.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A \ref Failure with what the system says of `errno`.
Failure systemFailure(const std::string& what);

} // namespace DiskUtil
