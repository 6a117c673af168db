#include <KxQts/winapi/security.h>

#include "platform/keychain/status.h"
#include "platform/keychains.h"

#include <KxQts/errors.h>

#include <cstring>
#include <memory>
#include <new>

namespace {

int control(const char* path, const char* password) {
    std::unique_ptr<Korvex::OpenKeychain> keychain;
    if (const int status = Korvex::systemKeychains().open(path, keychain); status != 0)
        return status;
    return password ? keychain->unlock({password, std::strlen(password)}) : keychain->lock();
}

} // namespace

uint32_t KxSecurityKeychainControl(const char* keychainPath, const char* password) {
    if (!keychainPath || *keychainPath == '\0')
        return Korvex::Error::InvalidArgument;
    try {
        return static_cast<uint32_t>(control(keychainPath, password));
    } catch (const std::bad_alloc&) {
        return static_cast<uint32_t>(Korvex::Error::StatusNoMemory);
    }
}
