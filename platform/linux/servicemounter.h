#pragma once

#include <chrono>

namespace Korvex {

/// Changes how long a service that mounts may take to answer; a minute unless told otherwise.
/// \return How long it was before.
std::chrono::microseconds setServiceTimeLimit(std::chrono::microseconds limit);

} // namespace Korvex
