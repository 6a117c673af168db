#include "security/passwordverifier.h"

#include "platform/systemfacts.h"

#include <KxQts/errors.h>
#include <KxQts/files/knowndirectories.h>
#include <KxQts/files/library.h>
#include <KxQts/support/text.h>

#include <cstdio>
#include <string>

namespace Korvex {

namespace {

constexpr unsigned oldestRelease = 10;

QString verifierFile() {
    QString path;
    getSystemDirectory(path);
    return path + QLatin1String("/libOdApi") + QLatin1String(".dylib");
}

} // namespace

unsigned PasswordVerifier::verify(const QString& userName, const QString& password) {
    if (!isSupported())
        return Error::VerifierUnsupported;
    if (!isLoaded())
        return Error::VerifierMissing;
    if (!hasEntryPoint())
        return Error::VerifierUnusable;
    const WCString user(userName);
    const WCString secret(password);
    return entryPoint.load()(user, secret);
}

bool PasswordVerifier::isSupported() {
    if (major == 0) {
        unsigned first = 0;
        unsigned second = 0;
        unsigned third = 0;
        const std::string release = systemFacts().kernelRelease().value_or("");
        // NOLINTNEXTLINE(*-vararg): as many numbers as there are
        std::sscanf(release.c_str(), "%u.%u.%u", &first, &second, &third);
        major = first;
        minor = second;
    }
    return major >= oldestRelease;
}

bool PasswordVerifier::isLoaded() {
    if (!library)
        library = loadLibrary(verifierFile());
    return library != nullptr;
}

bool PasswordVerifier::hasEntryPoint() {
    if (!entryPoint)
        entryPoint = reinterpret_cast<EntryPoint>(
            reinterpret_cast<void*>(GetProcAddress(library, "odUserAccountVerifyPassword")));
    return entryPoint != nullptr;
}

} // namespace Korvex
