#pragma once

#include "platform/keychain/document.h"

#include <string_view>
#include <vector>

namespace Korvex::KeychainItems {

/// Takes the part of a keychain file apart that holds its items. \return False when something else
/// is in it; only the layout of the blocks is looked at, not what they hold.
[[nodiscard]] bool read(std::string_view text, std::vector<KeychainItem>& items);

/// The line that begins a block of a kind, with its end.
[[nodiscard]] std::string_view beginningOf(KeychainItem::Kind kind);

} // namespace Korvex::KeychainItems
