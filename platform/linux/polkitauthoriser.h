#pragma once

#include "platform/authoriser.h"

namespace Korvex {

/// What is run to become root. What is called by these paths in a test may be something else.
struct PrivilegePrograms {
    const char* pkexec = "/usr/bin/pkexec";
    const char* helper = nullptr; ///< Null for the one that is installed beside the library
};

/// Authorisation by polkit.
///
/// The question and the run are one action of polkit's, which names the helper program that
/// `pkexec` starts; polkit keeps the answer for the process that it was asked for. Root is not
/// asked, and needs neither polkit nor its programs.
class PolkitAuthoriser final : public Authoriser {
public:
    /// What the policy file calls the action.
    static constexpr const char* actionName = "com.korvex.kxqts.run-as-administrator";

    PolkitAuthoriser() = default;
    explicit PolkitAuthoriser(const PrivilegePrograms& toUse) : programs(toUse) {}

    [[nodiscard]] OSStatus create(unsigned long flags, const AuthorizationOpaqueRef*& ref) override;
    [[nodiscard]] OSStatus copyAdministratorRight(const AuthorizationOpaqueRef* ref,
                                                  unsigned long flags) override;
    [[nodiscard]] OSStatus run(const AuthorizationOpaqueRef* ref, const char* tool,
                               const char* const* arguments) override;
    OSStatus free(const AuthorizationOpaqueRef* ref, unsigned long flags) override;

private:
    PrivilegePrograms programs;
};

} // namespace Korvex
