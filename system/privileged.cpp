#include <KxQts/system/privileged.h>

#include "platform/authoriser.h"

#include <KxQts/winapi/text.h>

#include <cstdio>
#include <utility>

using Korvex::authoriser;

namespace {

constexpr unsigned long forAdministrators = kAuthorizationFlagInteractionAllowed |
                                            kAuthorizationFlagExtendRights |
                                            kAuthorizationFlagPreAuthorize;
constexpr unsigned toBegin = 100; // milliseconds that a program gets

/// The authorisation that later commands use. Callers see to it that one thread at a time does.
struct Kept {
    Kept() { authoriser(); } // made before this, it outlives it
    ~Kept() { release(); }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;

    void release() {
        authoriser().free(std::exchange(ref, nullptr), kAuthorizationFlagDestroyRights);
    }

    const AuthorizationOpaqueRef* ref = nullptr;
};

Kept& kept() {
    static Kept made;
    return made;
}

void printRun(const char* toolPath, const char* const* args, OSStatus status) {
    std::printf("----> toolPath=%s, %d\n", toolPath ? toolPath : "(null)", status);
    for (int i = 0; args && args[i]; ++i)
        std::printf("arg[%d]=%s\n", i, args[i]);
}

/// Tries once more, with an authorisation that is new.
OSStatus runAgain(const char* toolPath, const char* const* args) {
    kept().release();
    const OSStatus status = requestAuthorization(kept().ref, kAuthorizationFlagDefaults);
    return status == noErr ? authoriser().run(kept().ref, toolPath, args) : status;
}

} // namespace

OSStatus requestAuthorization(const AuthorizationOpaqueRef*& ref, unsigned long flags) {
    const OSStatus status = authoriser().create(flags, ref);
    return status == noErr ? authoriser().copyAdministratorRight(ref, forAdministrators) : status;
}

OSStatus runPrivilegedCommandOnce(const char* toolPath, const char* const* args,
                                  unsigned long flags) {
    const AuthorizationOpaqueRef* ref = nullptr;
    OSStatus status = requestAuthorization(ref, flags);
    if (status == noErr)
        status = authoriser().run(ref, toolPath, args);
    authoriser().free(ref, flags);
    if (status == noErr)
        (void)kx_sleep(toBegin);
    return status;
}

OSStatus runPrivilegedCommand(const char* toolPath, const char* const* args) {
    if (!kept().ref) {
        const OSStatus status = requestAuthorization(kept().ref, kAuthorizationFlagDefaults);
        if (status != noErr) {
            std::printf("runPrivilegedCommand:status %d", status);
            return status;
        }
    }
    OSStatus status = authoriser().run(kept().ref, toolPath, args);
    printRun(toolPath, args, status);
    if (status != noErr)
        status = runAgain(toolPath, args);
    if (status == noErr)
        (void)kx_sleep(toBegin);
    return status;
}

void authDestructor() {
    kept().release();
}
