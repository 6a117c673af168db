#pragma once

#include <stdexcept>
#include <string>

namespace Security {

/// What was asked for could not be done. The text ends up on standard error.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The command line makes no sense.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws a \ref Failure unless a status says success. \param subject What it is about, a path for
/// example.
void require(int status, const std::string& subject);

} // namespace Security
