// Makes a recovery identity and works with its keychains:
//
//   recoverykey make FOLDER        a master keychain and one with the certificate alone
//   recoverykey unlock KEYCHAIN
//   recoverykey lock KEYCHAIN
//
// Passwords come from standard input. A program in Qt's types, without an event loop.

#include <KxQts/KxQts.h>

#include <cstdio>
#include <string>

namespace {

/// The first line of standard input, wiped with its holder.
class Password {
public:
    Password() {
        text.reserve(256);
        for (int byte = std::getchar(); byte != EOF && byte != '\n' && text.size() < 256;
             byte = std::getchar())
            text += static_cast<char>(byte);
    }
    ~Password() { ZeroMemory(text.data(), text.size()); }
    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;

    std::string text;
};

/// \return The program's result.
int makeIdentity(const char* folder) {
    const Password password;
    QString secret = QString::fromLatin1(password.text.data());
    QString message;
    const int status = KxSecurityCreateMasterIdentityAndFileVaultKeychain(
        secret, QString::fromLocal8Bit(folder), QStringLiteral("recovery-master.keychain"),
        QStringLiteral("recovery.keychain"), message);
    KXQStringDeepCleanAndRelease(secret);
    // The message may hold the password: it is nobody's business but the user's at most.
    std::printf("status %d%s\n", status, message.isEmpty() ? "" : ", with a message");
    KXQStringDeepCleanAndRelease(message);
    return status == 0 ? 0 : 1;
}

int control(const char* keychain, const char* password) {
    const std::uint32_t status = KxSecurityKeychainControl(keychain, password);
    std::printf("status %d\n", static_cast<int>(status));
    return status == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string action = argc == 3 ? argv[1] : "";
    if (action == "make")
        return makeIdentity(argv[2]);
    if (action == "unlock")
        return control(argv[2], Password().text.c_str());
    if (action == "lock")
        return control(argv[2], nullptr);
    std::fputs("usage: recoverykey make FOLDER | unlock KEYCHAIN | lock KEYCHAIN\n", stderr);
    return 2;
}
