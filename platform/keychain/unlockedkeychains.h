#pragma once

#include "platform/keychain/document.h"

#include <optional>

/// Which keychains are unlocked: a file for each in the user's run-time folder, which holds the
/// keychain's own key. That key is random; passwords, and what is derived from them, are nowhere.
namespace Korvex::UnlockedKeychains {

/// The key of a keychain. \return Nothing when it is locked.
std::optional<KeychainKey> keyOf(const KeychainDocument::Identifier& identifier);

/// Unlocks a keychain. \return Whether it could be noted.
[[nodiscard]] bool keep(const KeychainDocument::Identifier& identifier, const KeychainKey& key);

/// Locks a keychain. \return Whether it is locked now.
[[nodiscard]] bool forget(const KeychainDocument::Identifier& identifier);

} // namespace Korvex::UnlockedKeychains
