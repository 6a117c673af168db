#include <KxQts/registry/prefs.h>
#include <KxQts/system/systeminfo.h>

#include "files/mainbundle.h"
#include "platform/groups.h"
#include "platform/scopes.h"
#include "platform/systemfacts.h"
#include "system/answers.h"

#include <QHostInfo>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using Korvex::ErrorNumberKept;
using Korvex::handOn;
using Korvex::systemFacts;

namespace {

bool pathOf(const Korvex::Cf::Owned<CFURLRef>& url, QString& path) {
    if (!url)
        return false;
    const Korvex::Cf::Owned<CFStringRef> text(
        CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
    return CFStringToQString(path, text.get());
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > 0; });
}

} // namespace

bool getComputerName(QString& name) {
    const ErrorNumberKept kept;
    name = QHostInfo::localHostName();
    return true;
}

bool getHostName(QString& name) {
    const QString domain = QStringLiteral("SystemConfiguration/preferences");
    const ErrorNumberKept kept;
    name.clear();
    Korvex::WPrefs store(nullptr, nullptr, true);
    if (!store.initialize(domain, nullptr, true))
        return false;
    if (store.getProfileString(QStringLiteral("System/Network/HostNames/LocalHostName"),
                               kCFPreferencesAnyUser, name))
        return true;
    return Korvex::saysNothing(domain) && handOn(systemFacts().configuredHostName(), name);
}

bool getUserName(QString& name) {
    const ErrorNumberKept kept;
    return handOn(Korvex::groupMembership().nameOf(geteuid()), name);
}

bool CFStringToQString(QString& out, CFStringRef s) {
    if (const char* bytes = CFStringGetCStringPtr(s, CFStringGetSystemEncoding())) {
        out = QString::fromLatin1(bytes);
        return true;
    }
    const UniChar* units = CFStringGetCharactersPtr(s);
    if (!units)
        return false;
    // Callers have always been given the zero behind the text as well.
    out = QString(reinterpret_cast<const QChar*>(units), CFStringGetLength(s) + 1);
    return true;
}

bool getModel(QString& model) {
    const ErrorNumberKept kept;
    return handOn(systemFacts().model(), model);
}

bool getSerialNumber(QString& serial) {
    constexpr std::size_t longest = 255;
    const ErrorNumberKept kept;
    serial.clear();
    const std::optional<std::string> number = systemFacts().serialNumber();
    if (number && number->size() <= longest && isAscii(*number))
        serial = QString::fromStdString(*number);
    return !serial.isEmpty();
}

bool getBundlePath(QString& path) {
    const ErrorNumberKept kept;
    return pathOf(Korvex::mainBundle(), path);
}

bool getBundleExecutablePath(QString& path) {
    const ErrorNumberKept kept;
    return pathOf(Korvex::mainExecutable(), path);
}

int getSecureVirtualMemoryState(bool& encrypted) {
    return systemFacts().readSwapEncryption(encrypted);
}

int getFileMode(const char* file, unsigned short& mode) {
    if (!file)
        return EFAULT; // what the system says of it
    struct stat status {};
    if (stat(file, &status) != 0)
        return errno;
    mode = static_cast<unsigned short>(status.st_mode);
    return 0;
}
