#pragma once

/// The platform's published status numbers, as far as keychains use them.
namespace Korvex::KeychainStatus {

inline constexpr int Success = 0;
/// Reading or writing failed
inline constexpr int TransferFailed = -36;
/// No memory
inline constexpr int NoMemory = -108;
/// The bytes are no certificate
inline constexpr int UnknownFormat = -25257;
/// The keychain may not be read, or its unlocked state cannot be kept or ended
inline constexpr int NotAvailable = -25291;
/// The keychain, or its folder, may not be written
inline constexpr int ReadOnly = -25292;
/// Wrong password
inline constexpr int WrongPassword = -25293;
/// There is no such file
inline constexpr int NoSuchKeychain = -25294;
/// What is there is no keychain, or a damaged one
inline constexpr int InvalidKeychain = -25295;
/// There is a file of that name already
inline constexpr int DuplicateKeychain = -25296;
/// The certificate is in the keychain already
inline constexpr int DuplicateItem = -25299;
/// There is no certificate in the keychain
inline constexpr int ItemNotFound = -25300;
/// The keychain would be larger than keychains may be
inline constexpr int DataTooLarge = -25302;
/// The keychain is locked, and nobody is asked for its password
inline constexpr int InteractionNotAllowed = -25308;

} // namespace Korvex::KeychainStatus
