#include <KxQts/security/accounts.h>

#include "security/passwordverifier.h"

#include <KxQts/errors.h>

#include <new>

namespace {

constinit Korvex::PasswordVerifier verifier;

} // namespace

std::uint32_t KxVerifyUserPassword(const QString& userName, const QString& password) {
    try {
        return verifier.verify(userName, password);
    } catch (const std::bad_alloc&) {
        return Korvex::Error::VerifierMissing; // the next call tries again
    }
}
