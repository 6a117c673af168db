#pragma once

#include "platform/keychain/document.h"

#include <string_view>
#include <vector>

namespace Security {

/// Makes a recovery identity: a new RSA key of 3072 bits with a certificate that it has signed
/// itself, valid for twenty years.
/// \param password What the private key is encrypted with.
/// \return The certificate and the encrypted private key.
[[nodiscard]] std::vector<Korvex::KeychainItem> makeRecoveryIdentity(std::string_view password);

} // namespace Security
