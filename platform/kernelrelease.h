#pragma once

#include <string>

namespace Korvex {

/// What the running kernel calls its release. Any thread may ask at any time.
class KernelRelease {
public:
    virtual ~KernelRelease() = default;

    /// The release, "10.8.0" for example. \return The empty text when it cannot be told.
    virtual std::string text() = 0;
};

/// The kernel release in force.
KernelRelease& kernelRelease();

} // namespace Korvex
