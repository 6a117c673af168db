#include <KxQts/security/keychain.h>

#include "support/wipe.h"

#include <KxQts/errors.h>
#include <KxQts/support/text.h>

#include <QStringView>

#include <cstdlib>
#include <initializer_list>
#include <new>

namespace {

using Pieces = std::initializer_list<QStringView>;

constexpr QStringView temporaryKeychain = u"/tmp/kxfvm.keychain";
constexpr QStringView temporaryCertificate = u"/tmp/kxfvrk.cer";

/// A command line for the shell. It may hold a password, so it is written in one go, into memory
/// that is wiped with it.
class Command {
public:
    explicit Command(Pieces pieces) {
        qsizetype length = 0;
        for (const QStringView piece : pieces)
            length += piece.size();
        text.reserve(length);
        for (const QStringView piece : pieces)
            text.append(piece);
    }
    ~Command() { Korvex::wipe(text.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar)); }

    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// \return What `system` returned.
    [[nodiscard]] int run() const {
        const WCString line(text);
        if (*static_cast<const char*>(line) == '\0')
            throw std::bad_alloc(); // the shell would make a success of nothing
        return std::system(line);
    }

    /// Runs it, and says in a message when it failed.
    [[nodiscard]] int run(QString& message) const {
        const int status = run();
        if (status != 0) {
            // A copy of its own that the caller may wipe, and no other one.
            QString report;
            report.reserve(text.size() + 16);
            report.append(u"system(").append(text).append(u") failed.");
            message = std::move(report);
        }
        return status;
    }

private:
    QString text;
};

QString pathIn(const QString& folder, const QString& name) {
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

/// Runs commands that replace what is at the temporary path by a new keychain, and moves that to
/// its place.
int makeKeychain(QStringView subcommand, const QString& password, QString& message) {
    return Command({u"security ", subcommand, u" -p \"", password, u"\" ", temporaryKeychain})
        .run(message);
}

int moveKeychain(const QString& place, QString& message) {
    return Command({u"mv -f ", temporaryKeychain, u" ", place}).run(message);
}

int makeMasterKeychain(const QString& password, const QString& place, QString& message) {
    (void)Command({u"rm -f ", temporaryKeychain}).run();
    const int status = makeKeychain(u"create-filevaultmaster-keychain", password, message);
    return status != 0 ? status : moveKeychain(place, message);
}

int copyCertificate(const QString& fromKeychain, QString& message) {
    const int status =
        Command({u"security export -k ", fromKeychain, u" -t certs -o ", temporaryCertificate})
            .run(message);
    return status != 0 ? status
                       : Command({u"security import ", temporaryCertificate, u" -t cert -k ",
                                  temporaryKeychain})
                             .run(message);
}

int makeCertificateKeychain(const QString& password, const QString& masterKeychain,
                            const QString& place, QString& message) {
    if (const int status = makeKeychain(u"create-keychain", password, message); status != 0)
        return status;
    if (const int status = copyCertificate(masterKeychain, message); status != 0)
        return status;
    (void)Command({u"rm -f ", temporaryCertificate}).run();
    return moveKeychain(place, message);
}

} // namespace

int KxSecurityCreateMasterIdentityAndFileVaultKeychain(const QString& password,
                                                       const QString& folder,
                                                       const QString& masterKeychainName,
                                                       const QString& certKeychainName,
                                                       QString& message) {
    if (password.isEmpty() || folder.isEmpty() || masterKeychainName.isEmpty() ||
        certKeychainName.isEmpty() || masterKeychainName == certKeychainName) {
        message = QStringLiteral("Some/all args are empty or keychain names are same.");
        return Korvex::Error::InvalidArgument;
    }
    try {
        const QString master = pathIn(folder, masterKeychainName);
        const int status = makeMasterKeychain(password, master, message);
        return status != 0 ? status
                           : makeCertificateKeychain(password, master,
                                                     pathIn(folder, certKeychainName), message);
    } catch (const std::bad_alloc&) {
        return Korvex::Error::StatusNoMemory;
    }
}
