#include "commands.h"

#include <array>

namespace Security {

std::span<const Command> commands() {
    static constexpr std::array all{
        Command{"create-keychain", "p", "[-p PASSWORD] KEYCHAIN", "make an empty keychain",
                createKeychain},
        Command{"create-filevaultmaster-keychain", "p", "[-p PASSWORD] KEYCHAIN",
                "make a keychain with a new recovery identity", createRecoveryKeychain},
        Command{"unlock-keychain", "p", "[-p PASSWORD] KEYCHAIN",
                "unlock a keychain for this session", unlockKeychain},
        Command{"lock-keychain", "", "KEYCHAIN", "lock a keychain", lockKeychain},
        Command{"show-keychain-info", "", "KEYCHAIN", "tell the state of a keychain",
                showKeychainInfo},
        Command{"list", "", "KEYCHAIN", "list what a keychain holds", listItems},
        Command{"export", "kto", "-k KEYCHAIN [-t certs] [-o FILE]",
                "write the certificates of a keychain", exportCertificates},
        Command{"import", "kt", "FILE -k KEYCHAIN [-t cert]",
                "add the certificates of a file to an unlocked keychain", importCertificates},
    };
    return all;
}

} // namespace Security
