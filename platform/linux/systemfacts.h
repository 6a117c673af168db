#pragma once

#include "platform/systemfacts.h"

namespace Korvex {

/// The facts that the kernel and the files of a distribution tell.
class LinuxSystemFacts final : public SystemFacts {
public:
    /// \param rootFolder What stands for "/": every file is looked for below it.
    explicit LinuxSystemFacts(const char* rootFolder = "") : root(rootFolder) {}

    std::optional<std::string> kernelRelease() override;
    std::optional<std::string> productVersion() override;
    std::optional<std::string> productBuild() override;
    std::optional<std::string> configuredHostName() override;
    std::optional<std::string> model() override;
    std::optional<std::string> serialNumber() override;
    [[nodiscard]] int readSwapEncryption(bool& encrypted) override;

private:
    [[nodiscard]] std::optional<std::string> firstLineOf(const char* path) const;
    [[nodiscard]] std::optional<std::string> releaseValue(const char* name) const;

    const char* const root; // no string: what outlives main may still ask
};

} // namespace Korvex
