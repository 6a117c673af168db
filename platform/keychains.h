#pragma once

#include <memory>
#include <string_view>

namespace Korvex {

/// A keychain that has been opened. One thread at a time; deleting it releases the keychain and
/// changes nothing about it.
class OpenKeychain {
public:
    virtual ~OpenKeychain() = default;

    /// Unlocks the keychain for this user's session. \param password Every byte counts. No copy of
    /// it is left behind.
    /// \return 0, or the platform's status: −25293 for a wrong password, −25295 for a damaged
    /// keychain, −25291 where the unlocked state cannot be kept.
    virtual int unlock(std::string_view password) = 0;

    /// Locks the keychain. \return 0, also when it is locked already; −25291 when the unlocked
    /// state cannot be ended.
    virtual int lock() = 0;
};

/// The platform's keychains. Any thread may call; a call takes as long as deriving a key from a
/// password does, which is long on purpose (tenths of a second).
class Keychains {
public:
    virtual ~Keychains() = default;

    /// Opens a keychain file. \param opened Receives the keychain, the caller's own, on success.
    /// \return 0, or the platform's status: −25294 when there is no such file, −25295 for what is
    /// no keychain or a damaged one, −25291 when it may not be read, −36 when reading fails, −108
    /// without memory.
    virtual int open(const char* path, std::unique_ptr<OpenKeychain>& opened) = 0;
};

/// The keychains in force.
Keychains& systemKeychains();

} // namespace Korvex
