#include "platform/keychain/cryptography.h"

#include <algorithm>
#include <dlfcn.h>
#include <new>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

namespace Korvex::Cryptography {

namespace {

struct CryptoLibrary {
    decltype(&::EVP_PBE_scrypt) scrypt = nullptr;
    decltype(&::EVP_sha256) sha256Method = nullptr;
    decltype(&::HMAC) hmac = nullptr;
    decltype(&::SHA256) sha256 = nullptr;
    decltype(&::RAND_bytes) random = nullptr;
};

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool load(CryptoLibrary& crypto) {
    // Programs that never use a keychain do not pay for it.
    void* const library = dlopen("libcrypto.so.3", RTLD_NOW | RTLD_LOCAL);
    return library && find(library, "EVP_PBE_scrypt", crypto.scrypt) &&
           find(library, "EVP_sha256", crypto.sha256Method) && find(library, "HMAC", crypto.hmac) &&
           find(library, "SHA256", crypto.sha256) && find(library, "RAND_bytes", crypto.random);
}

const CryptoLibrary* loaded() {
    static CryptoLibrary crypto;
    static const bool isWhole = load(crypto);
    return isWhole ? &crypto : nullptr;
}

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

bool isAvailable() {
    return loaded() != nullptr;
}

bool random(std::uint8_t* bytes, std::size_t size) {
    const CryptoLibrary* crypto = loaded();
    return crypto && crypto->random(bytes, static_cast<int>(size)) == 1;
}

bool derive(std::string_view password, const KeychainBlock& salt, PasswordKeys& keys) {
    constexpr std::uint64_t memoryLimit = 64 << 20;
    const CryptoLibrary* crypto = loaded();
    std::array<std::uint8_t, 2 * sizeof(KeychainBlock)> both{};
    const WipedAtEnd wiped(both);
    if (!crypto)
        return false;
    if (crypto->scrypt(password.data(), password.size(), salt.data(), salt.size(), scryptCost,
                       scryptBlockSize, scryptParallelization, memoryLimit, both.data(),
                       both.size()) != 1)
        throw std::bad_alloc();
    const auto* const middle = both.begin() + sizeof(KeychainBlock);
    std::copy(both.cbegin(), middle, keys.pad.bytes.begin());
    std::copy(middle, both.cend(), keys.authentication.bytes.begin());
    return true;
}

bool authenticate(const KeychainKey& key, std::string_view text, KeychainBlock& code) {
    const CryptoLibrary* crypto = loaded();
    unsigned size = code.size();
    return crypto && crypto->hmac(crypto->sha256Method(), key.bytes.data(),
                                  static_cast<int>(key.bytes.size()), bytesOf(text), text.size(),
                                  code.data(), &size) != nullptr;
}

bool digest(std::string_view text, KeychainBlock& code) {
    const CryptoLibrary* crypto = loaded();
    return crypto && crypto->sha256(bytesOf(text), text.size(), code.data()) != nullptr;
}

bool equal(const KeychainBlock& one, const KeychainBlock& other) {
    std::uint8_t difference = 0;
    for (std::size_t i = 0; i < one.size(); ++i)
        difference = static_cast<std::uint8_t>(difference | (one[i] ^ other[i]));
    return difference == 0;
}

} // namespace Korvex::Cryptography
