/// \file
/// Verification of account passwords.
///
/// `KxSecurityIsCurrentUserAdmin` and `KxSecurityIsUserAdmin` in `KxQts/winapi/security.h` say who
/// is an administrator.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/security.h>

#include <QString>

#include <cstdint>

/// Asks the verifier whether a password is a user's.
///
/// The verifier is the library "/usr/local/lib/Korvex/libOdApi.dylib" with the C function
/// `unsigned odUserAccountVerifyPassword(const char* userName, const char* password)`. It is loaded
/// at the first use that finds it, and kept; until then every call looks for it again.
///
/// Verifiers need a kernel release of 10 or later by the numbers of the system that they were made
/// for. Linux counts its releases otherwise and has not come to 10: there the answer is 9000 before
/// anything is loaded, and programs must have another way to verify a password.
///
/// \return What the verifier returns: 0 when the password is the user's. 9000 when the kernel's
/// release is below 10 or unknown; 9001 when the library cannot be loaded, 9002 when it lacks the
/// function. Both texts go to the verifier as Latin-1, and these copies are wiped. Any thread may
/// call, as far as the verifier lets it. `errno` means nothing.
KXQTS_EXPORT std::uint32_t KxVerifyUserPassword(const QString& userName, const QString& password);
