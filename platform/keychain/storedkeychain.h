#pragma once

#include "platform/keychain/document.h"

#include <string>
#include <string_view>
#include <vector>

namespace Korvex {

/// A keychain in its file. What a call cannot do is told as a status of the platform, see
/// `platform/keychain/status.h`. A file is replaced as a whole and belongs to its owner alone;
/// changes of several processes follow each other.
class StoredKeychain {
public:
    /// Makes a keychain and leaves it unlocked, if the user's session can keep that.
    [[nodiscard]] static int create(const std::string& path, std::string_view password,
                                    std::vector<KeychainItem> items);

    /// Reads a keychain.
    [[nodiscard]] int open(const std::string& path);

    /// Adds items to an unlocked keychain. All are added or none.
    [[nodiscard]] static int add(const std::string& path, const std::vector<KeychainItem>& items);

    [[nodiscard]] int unlock(std::string_view password) const;
    [[nodiscard]] int lock() const;
    [[nodiscard]] bool isUnlocked() const;

    /// Whether the keychain is what was written, as far as that can be told: of a locked one only
    /// that it is not damaged.
    [[nodiscard]] int verify() const;

    [[nodiscard]] const std::vector<KeychainItem>& items() const { return document.items; }

private:
    KeychainDocument document;
};

} // namespace Korvex
