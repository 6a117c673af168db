#include "failure.h"

#include "platform/keychain/status.h"

namespace Security {

namespace {

namespace Status = Korvex::KeychainStatus;

const char* describe(int status) {
    switch (status) {
    case Status::TransferFailed:
        return "reading or writing failed";
    case Status::NoMemory:
        return "there is no memory";
    case Status::UnknownFormat:
        return "the file holds no certificate, or something that cannot be read as one";
    case Status::NotAvailable:
        return "the keychain may not be read, or this session cannot keep it unlocked";
    case Status::ReadOnly:
        return "this may not be written";
    case Status::WrongPassword:
        return "the password is wrong";
    case Status::NoSuchKeychain:
        return "there is no such keychain";
    case Status::InvalidKeychain:
        return "this is no keychain, or a damaged one";
    case Status::DuplicateKeychain:
        return "there is a file of that name already";
    case Status::DuplicateItem:
        return "the certificate is in the keychain already";
    case Status::ItemNotFound:
        return "there is no certificate in the keychain";
    case Status::DataTooLarge:
        return "the keychain would be too large";
    case Status::InteractionNotAllowed:
        return "the keychain is locked";
    default:
        return "it failed";
    }
}

} // namespace

void require(int status, const std::string& subject) {
    if (status != Status::Success)
        throw Failure(subject + ": " + describe(status) + " (" + std::to_string(status) + ')');
}

} // namespace Security
