#include "commands.h"
#include "failure.h"
#include "identity.h"
#include "password.h"
#include "platform/keychain/status.h"
#include "platform/keychain/storedkeychain.h"

#include <cstdio>
#include <sys/stat.h>

namespace Security {

namespace {

namespace Status = Korvex::KeychainStatus;

/// Says so before anyone types a password, or a key is made, for nothing.
void requireFree(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0)
        require(Status::DuplicateKeychain, path);
}

void create(const std::string& path, const Password& password,
            const std::vector<Korvex::KeychainItem>& items) {
    require(Korvex::StoredKeychain::create(path, password.text(), items), path);
    Korvex::StoredKeychain made;
    if (made.open(path) == Status::Success && !made.isUnlocked())
        std::fprintf(stderr, "security: %s: this session cannot keep it unlocked; it is locked\n",
                     path.c_str());
}

} // namespace

void createKeychain(const Arguments& arguments) {
    const std::string path = arguments.operand("keychain");
    requireFree(path);
    create(path, Password(arguments, true), {});
}

void createRecoveryKeychain(const Arguments& arguments) {
    const std::string path = arguments.operand("keychain");
    requireFree(path);
    const Password password(arguments, true);
    create(path, password, makeRecoveryIdentity(password.text()));
}

} // namespace Security
