#include "platform/keychains.h"

#include "platform/keychain/status.h"
#include "platform/keychain/storedkeychain.h"
#include "platform/replaceable.h"

#include <new>

namespace Korvex {

namespace {

class OpenStoredKeychain final : public OpenKeychain {
public:
    int unlock(std::string_view password) override { return keychain.unlock(password); }
    int lock() override { return keychain.lock(); }

    StoredKeychain keychain;
};

/// Keychains in files of the library's own format.
class StoredKeychains final : public Keychains {
public:
    int open(const char* path, std::unique_ptr<OpenKeychain>& opened) override {
        auto found = std::make_unique<OpenStoredKeychain>();
        const int status = found->keychain.open(path);
        if (status == KeychainStatus::Success)
            opened = std::move(found);
        return status;
    }
};

} // namespace

Keychains& systemKeychains() {
    static StoredKeychains keychains;
    return inForce<Keychains>(keychains);
}

} // namespace Korvex
