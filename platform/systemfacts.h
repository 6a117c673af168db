#pragma once

#include <optional>
#include <string>

namespace Korvex {

/// What the system tells about itself and the machine that it runs on.
///
/// Every question is put anew: nothing is remembered. Any thread may ask. Texts are UTF-8, without
/// anything around them; an answer that there is not is nothing, never an empty text.
class SystemFacts {
public:
    virtual ~SystemFacts() = default;

    /// The kernel's release, such as "6.1.0-18-amd64".
    virtual std::optional<std::string> kernelRelease() = 0;

    /// The version of the system that its maker gave it, such as "12".
    virtual std::optional<std::string> productVersion() = 0;

    /// The build of that version.
    virtual std::optional<std::string> productBuild() = 0;

    /// The name that the host was given by whoever set it up.
    virtual std::optional<std::string> configuredHostName() = 0;

    /// What the machine's maker calls this kind of machine.
    virtual std::optional<std::string> model() = 0;

    /// The number that tells this machine from others of its kind. Only some users may see it.
    virtual std::optional<std::string> serialNumber() = 0;

    /// Whether all memory that is swapped out at present is encrypted.
    /// \param encrypted Left alone on failure.
    /// \return 0, or the system's error number.
    [[nodiscard]] virtual int readSwapEncryption(bool& encrypted) = 0;
};

/// The facts in force.
SystemFacts& systemFacts();

} // namespace Korvex
