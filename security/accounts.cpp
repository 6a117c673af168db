#include <KxQts/security/accounts.h>

#include "security/passwordverifier.h"

namespace {

constinit Korvex::PasswordVerifier verifier;

} // namespace

std::uint32_t KxVerifyUserPassword(const QString& userName, const QString& password) {
    return verifier.verify(userName, password);
}
