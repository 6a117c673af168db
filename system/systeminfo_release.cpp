#include <KxQts/system/systeminfo.h>

#include "platform/corefoundation/object.h"
#include "platform/scopes.h"
#include "platform/systemfacts.h"
#include "system/answers.h"

#include <KxQts/registry/prefs.h>

#include <cstdio>

using Korvex::ErrorNumberKept;
using Korvex::handOn;
using Korvex::systemFacts;

namespace {

constexpr int allParts = 3;

/// What a release begins with: its major number for those that anyone asks about.
QString firstTwo() {
    QString release;
    return getOSKernelReleaseString(release) ? release.left(2) : QString();
}

bool isNewerThan(int major) {
    bool isNumber = false;
    const int number = firstTwo().toInt(&isNumber);
    return isNumber && number > major;
}

/// \return How many numbers there are at the beginning of a text, up to three; these are written.
int scanVersion(const QByteArray& text, unsigned& first, unsigned& second, unsigned& third) {
    return std::sscanf(text.constData(), "%u.%u.%u", &first, &second,
                       &third); // NOLINT(cert-err34-c)
}

QString versionDomain() {
    return QStringLiteral("/System/Library/CoreServices/SystemVersion");
}

bool copyStated(const QString& key, QString& out) {
    const Korvex::Cf::Owned<CFStringRef> name(Korvex::createCFString(key));
    const Korvex::Cf::Owned<CFStringRef> domain(Korvex::createCFString(versionDomain()));
    const Korvex::Cf::Owned<CFTypeRef> value(CFPreferencesCopyAppValue(name.get(), domain.get()));
    return CFGetTypeID(value.get()) == CFStringGetTypeID() &&
           CFStringToQString(out, static_cast<CFStringRef>(value.get()));
}

} // namespace

bool getOSKernelReleaseString(QString& release) {
    const ErrorNumberKept kept;
    return handOn(systemFacts().kernelRelease(), release);
}

bool Korvex::getOSKernelRelease(QString& release) {
    return getOSKernelReleaseString(release);
}

bool getOSKernelVersion(unsigned& major, unsigned& minor, unsigned* patch) {
    QString release;
    unsigned third = 0;
    if (!getOSKernelReleaseString(release) ||
        scanVersion(release.toLatin1(), major, minor, third) != allParts)
        return false;
    if (patch)
        *patch = third;
    return true;
}

bool isNewerThenLeopard() {
    return isNewerThan(9); // NOLINT(readability-magic-numbers)
}

bool isNewerThenSnowLeopard() {
    return isNewerThan(10); // NOLINT(readability-magic-numbers)
}

bool isSnowLeopard() {
    return firstTwo() == QLatin1String("10");
}

bool isLion() {
    return firstTwo() == QLatin1String("11");
}

bool Korvex::isMacOsxLion() {
    return isLion();
}

bool Korvex::isMacOsxMountainLion() {
    return firstTwo() == QLatin1String("12");
}

bool getProductVersion(QString& version, QString* build) {
    const ErrorNumberKept kept;
    if (Korvex::saysNothing(versionDomain()))
        return handOn(systemFacts().productVersion(), version) &&
               (!build || handOn(systemFacts().productBuild(), *build));
    return copyStated(QStringLiteral("ProductVersion"), version) &&
           (!build || copyStated(QStringLiteral("ProductBuildVersion"), *build));
}

bool getSystemVersionNumber(unsigned& minor, unsigned& patch) {
    QString version;
    unsigned major = 0;
    return getProductVersion(version, nullptr) &&
           scanVersion(version.toLatin1(), major, minor, patch) == allParts;
}

bool getSystemBuildNumber(unsigned& major, unsigned& letter, unsigned& number) {
    constexpr unsigned lowByte = 0xFF;
    QString version;
    QString build;
    if (!getProductVersion(version, &build))
        return false;
    char character = static_cast<char>(letter & lowByte);
    const int parts = std::sscanf(build.toLatin1().constData(), "%u%c%u", // NOLINT(cert-err34-c)
                                  &major, &character, &number);
    // Callers clear the letter themselves: its other bytes are not the number's.
    letter = (letter & ~lowByte) | static_cast<unsigned char>(character);
    return parts == allParts;
}
