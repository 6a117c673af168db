#pragma once

#include "platform/replaceable.h"
#include "platform/systemfacts.h"

#include <atomic>
#include <cerrno>

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
        return answer(release);
    }
    std::optional<std::string> productVersion() override { return answer(version); }
    std::optional<std::string> productBuild() override { return answer(build); }
    std::optional<std::string> configuredHostName() override { return answer(hostName); }
    std::optional<std::string> model() override { return answer(machineModel); }
    std::optional<std::string> serialNumber() override { return answer(serial); }
    [[nodiscard]] int readSwapEncryption(bool& encrypted) override {
        if (swapError == 0)
            encrypted = swapIsEncrypted;
        return swapError;
    }

private:
    /// What is not known has been looked for in vain, which leaves its number as with the real
    /// ones.
    static std::optional<std::string> answer(const std::optional<std::string>& fact) {
        if (!fact)
            errno = ENOENT;
        return fact;
    }

    Korvex::Replacement<Korvex::SystemFacts> inForce{*this};
};

} // namespace KxTest
