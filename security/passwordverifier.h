#pragma once

#include <KxQts/winapi/modules.h>

#include <QString>

#include <atomic>

namespace Korvex {

/// Verification of account passwords by a library that is loaded on demand. What has been found is
/// remembered; two threads that find it at the same time find the same.
class PasswordVerifier {
public:
    constexpr PasswordVerifier() = default;
    PasswordVerifier(const PasswordVerifier&) = delete;
    PasswordVerifier& operator=(const PasswordVerifier&) = delete;

    /// What the library says about a user's password; 9000, 9001 or 9002 when it cannot be asked.
    unsigned verify(const QString& userName, const QString& password);

private:
    using EntryPoint = unsigned (*)(const char* userName, const char* password);

    [[nodiscard]] bool isSupported();
    [[nodiscard]] bool isLoaded();
    [[nodiscard]] bool hasEntryPoint();

    // The kernel's release; read again as long as the major number is 0.
    std::atomic<unsigned> major{0};
    std::atomic<unsigned> minor{0};
    std::atomic<HMODULE> library{nullptr}; // for the life of the process
    std::atomic<EntryPoint> entryPoint{nullptr};
};

} // namespace Korvex
