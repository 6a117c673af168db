#include "commands.h"
#include "failure.h"
#include "password.h"
#include "platform/keychain/storedkeychain.h"

#include <algorithm>
#include <cstdio>

namespace Security {

namespace {

using Kind = Korvex::KeychainItem::Kind;

std::string openAt(const Arguments& arguments, Korvex::StoredKeychain& keychain) {
    std::string path = arguments.operand("keychain");
    require(keychain.open(path), path);
    return path;
}

long countOf(Kind kind, const Korvex::StoredKeychain& keychain) {
    return std::ranges::count(keychain.items(), kind, &Korvex::KeychainItem::kind);
}

} // namespace

void unlockKeychain(const Arguments& arguments) {
    Korvex::StoredKeychain keychain;
    const std::string path = openAt(arguments, keychain);
    const Password password(arguments, false);
    require(keychain.unlock(password.text()), path);
}

void lockKeychain(const Arguments& arguments) {
    Korvex::StoredKeychain keychain;
    const std::string path = openAt(arguments, keychain);
    require(keychain.lock(), path);
}

void showKeychainInfo(const Arguments& arguments) {
    Korvex::StoredKeychain keychain;
    const std::string path = openAt(arguments, keychain);
    require(keychain.verify(), path);
    std::printf("Keychain \"%s\" %s\n", path.c_str(),
                keychain.isUnlocked() ? "unlocked no-timeout" : "locked");
    std::printf("  certificates: %ld\n  private keys: %ld\n", countOf(Kind::Certificate, keychain),
                countOf(Kind::PrivateKey, keychain));
}

} // namespace Security
