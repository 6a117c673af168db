#pragma once

#include <KxQts/platformtypes.h>

#include <string>

/// What stands behind an authorisation that programs hold.
struct AuthorizationOpaqueRef {
    std::string keptAnswer; ///< By which the authoriser knows the answer that is kept; may be empty
};

namespace Korvex {

/// Who asks the user before something is done with an administrator's rights, and does it.
///
/// Results are 0 or a negative error number of the platform. Any thread may call; one authorisation
/// is used by one thread at a time.
class Authoriser {
public:
    virtual ~Authoriser() = default;

    /// Makes an authorisation without any rights. Nobody is asked.
    /// \param flags As the platform takes them. \param ref Receives it; freed with \ref free.
    [[nodiscard]] virtual OSStatus create(unsigned long flags,
                                          const AuthorizationOpaqueRef*& ref) = 0;

    /// Obtains the right to act as an administrator. May ask the user, and waits for the answer
    /// then, for minutes. \param flags Of kAuthorizationFlag….
    [[nodiscard]] virtual OSStatus copyAdministratorRight(const AuthorizationOpaqueRef* ref,
                                                          unsigned long flags) = 0;

    /// Starts a program with an administrator's rights and does not wait for its end. May ask the
    /// user if the right was not obtained or is not kept any more.
    /// \param tool An absolute path. \param arguments Those behind the program's name, up to a null
    /// one; null for none.
    [[nodiscard]] virtual OSStatus run(const AuthorizationOpaqueRef* ref, const char* tool,
                                       const char* const* arguments) = 0;

    /// Frees an authorisation; null does nothing. \param flags With
    /// `kAuthorizationFlagDestroyRights` the answer is not kept: the next one who needs the right
    /// is asked again.
    virtual OSStatus free(const AuthorizationOpaqueRef* ref, unsigned long flags) = 0;
};

/// The authoriser in force.
Authoriser& authoriser();

} // namespace Korvex
