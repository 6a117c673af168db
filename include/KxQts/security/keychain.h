/// \file
/// Making the keychains that hold a recovery identity.
///
/// `KxSecurityKeychainControl` in `KxQts/winapi/security.h` locks and unlocks them.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/security.h>

#include <QString>

/// Makes two keychains with one password: a master keychain with a new recovery identity
/// (certificate and private key), and one with the certificate alone.
///
/// The work is done by the shell, with the program `security` and with `rm` and `mv`, as `PATH`
/// finds them. The command lines are Latin-1. Paths are not quoted in them: folder and names hold
/// neither blanks nor anything else that means something to a shell. The password stands between
/// double quotes there, where `$`, backquote, backslash and the double quote keep their meaning; as
/// part of a command line it can also be seen by whoever may list the processes meanwhile.
///
/// Files are made as /tmp/kxfvm.keychain and /tmp/kxfvrk.cer first, so one identity can be made at
/// a time on a machine; no lock sees to that. The call waits for all commands.
///
/// \param folder Where the keychains go; it may end with a slash.
/// \param masterKeychainName,certKeychainName File names in the folder; files of these names are
/// replaced.
/// \param message Receives the reason of a failure; a success leaves it alone. For a failed command
/// it holds the **whole command line, the password included where it is part of it**: do not log
/// it.
/// \return 0; 22 when a text is empty or the names are the same; else what `system` returned for
/// the first command that failed, and what the commands before have made stays. −108 without
/// memory. The library's own copies of the password are wiped.
KXQTS_EXPORT int KxSecurityCreateMasterIdentityAndFileVaultKeychain(
    const QString& password, const QString& folder, const QString& masterKeychainName,
    const QString& certKeychainName, QString& message);
