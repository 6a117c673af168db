#pragma once

#include "openssl.h"
#include "platform/keychain/document.h"

#include <string>
#include <vector>

namespace Security {

/// A certificate as an item of a keychain; always the same text for the same certificate.
[[nodiscard]] Korvex::KeychainItem itemOf(const Certificate& certificate);

/// The certificates of a file, in PEM (any number of them, among whatever else) or in DER (one).
/// Throws a \ref Failure when there is none.
[[nodiscard]] std::vector<Korvex::KeychainItem> certificatesIn(const std::string& file,
                                                               const std::string& path);

/// What people want to know about a certificate, a line each.
[[nodiscard]] std::string describe(const Korvex::KeychainItem& item);

} // namespace Security
