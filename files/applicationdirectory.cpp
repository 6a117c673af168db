#include <KxQts/corefoundation/string.h>
#include <KxQts/corefoundation/url.h>
#include <KxQts/files/knowndirectories.h>

#include "files/applicationdirectory.h"
#include "files/mainbundle.h"
#include "platform/withoutmemory.h"

#include <cstring>
#include <new>

using Korvex::ApplicationPath;
using Korvex::Cf::Owned;

namespace Korvex {

bool readApplicationPath(ApplicationPath& path) try {
    const Owned<CFURLRef> url = mainBundle();
    const Owned<CFStringRef> text(url ? CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle)
                                      : nullptr);
    return text && CFStringGetCString(text.get(), path.data(), static_cast<CFIndex>(path.size()),
                                      kCFStringEncodingMacRoman);
} catch (const std::bad_alloc&) {
    return false;
}

bool readApplicationDirectory(ApplicationPath& path) {
    char* slash = readApplicationPath(path) ? std::strrchr(path.data(), '/') : nullptr;
    if (slash)
        *slash = '\0';
    return slash != nullptr;
}

} // namespace Korvex

bool getApplicationDirectory(char* buffer, unsigned long* length) {
    ApplicationPath path{};
    if (!buffer || !length || !Korvex::readApplicationDirectory(path))
        return false;
    *length = std::strlen(path.data());
    std::memcpy(buffer, path.data(), *length + 1);
    return true;
}

bool getApplicationDirectory(QString& path) try {
    const Korvex::ErrorNumberKept untilReturned;
    ApplicationPath found{};
    if (!Korvex::readApplicationDirectory(found))
        return false;
    path = QString::fromLatin1(found.data());
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool getApplicationFullPath(QString& path) try {
    const Korvex::ErrorNumberKept untilReturned;
    ApplicationPath found{};
    if (!Korvex::readApplicationPath(found))
        return false;
    path = QString::fromLatin1(found.data());
    return true;
} catch (const std::bad_alloc&) {
    return false;
}
