/// \file
/// Keychains by path and password, and who is an administrator.
///
/// `KxQts/security/keychain.h` and `KxQts/security/accounts.h` have the calls that take Qt's text
/// type.
#pragma once

#include <KxQts/export.h>

#include <stdbool.h>
#include <stdint.h>

/// Unlocks or locks a keychain file for the user's session.
///
/// Unlocking takes some tenths of a second on purpose, so that guessing passwords is slow.
/// \param keychainPath The file, in the system's bytes.
/// \param password The password, every byte up to the terminator; the empty one is a password, too.
/// Null locks the keychain. It stays the caller's to wipe: no copy is left behind.
/// \return 0, also for a keychain that is in that state already; 22 when \a keychainPath is null or
/// empty; else the platform's status, a negative number in 32 bits: −25293 (0xFFFF9D33) for a wrong
/// password, −25294 when there is no such file, −25295 for what is no keychain or a damaged one,
/// −25291 when the file may not be read or the session cannot keep the state, −36 when reading
/// fails, −108 without memory. `errno` means nothing. Any thread may call.
KXQTS_C_API uint32_t KxSecurityKeychainControl(const char* keychainPath, const char* password);

/// Whether the user of this process is an administrator: whether group 80 is among the process's
/// supplementary groups.
///
/// \return False also when there are none, or more than 64. Root is no administrator as such.
KXQTS_C_API bool KxSecurityIsCurrentUserAdmin(void);

/// Whether a user is an administrator: a member of group 80 in the account database.
///
/// \param userName May be null, who is none. A name that the database does not know is none either.
/// \return False also when the user is in more than 64 groups, counting group 0, which the list
/// begins with in place of the user's own group: who only has 80 for that is no administrator.
KXQTS_C_API bool KxSecurityIsUserAdmin(const char* userName);
