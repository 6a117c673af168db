#pragma once

#include "platform/replaceable.h"
#include "platform/systemfacts.h"

#include <atomic>

namespace KxTest {

/// The facts of a system that a test describes. They are in force while they live.
class ScriptedSystemFacts : public Korvex::SystemFacts {
public:
    // Not inline: compilers that do not look into instrumented atomics would otherwise believe that
    // the facts outlive the scope that they are in.
    [[gnu::noinline]] ScriptedSystemFacts() = default;

    /// \name The script: what is nothing is not known
    /// @{
    std::optional<std::string> release;
    std::optional<std::string> version;
    std::optional<std::string> build;
    std::optional<std::string> hostName;
    std::optional<std::string> machineModel;
    std::optional<std::string> serial;
    bool swapIsEncrypted = false;
    int swapError = 0;
    /// @}
    std::atomic<int> releaseQuestions{0}; ///< How often the kernel's release was asked for

    std::optional<std::string> kernelRelease() override {
        ++releaseQuestions;
        return release;
    }
    std::optional<std::string> productVersion() override { return version; }
    std::optional<std::string> productBuild() override { return build; }
    std::optional<std::string> configuredHostName() override { return hostName; }
    std::optional<std::string> model() override { return machineModel; }
    std::optional<std::string> serialNumber() override { return serial; }
    [[nodiscard]] int readSwapEncryption(bool& encrypted) override {
        if (swapError == 0)
            encrypted = swapIsEncrypted;
        return swapError;
    }

private:
    Korvex::Replacement<Korvex::SystemFacts> inForce{*this};
};

} // namespace KxTest
