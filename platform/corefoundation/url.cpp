#include "platform/corefoundation/encodings.h"
#include "platform/corefoundation/scalars.h"
#include "platform/corefoundation/string.h"

#include <KxQts/corefoundation/url.h>

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cstring>
#include <new>

using namespace Korvex::Cf;

struct __CFURL : Object {
    __CFURL(QByteArray toPath, QByteArray inFolder, bool directory)
        : Object(Type::Url),
          path(std::move(toPath)),
          base(std::move(inFolder)),
          isDirectory(directory) {}

    [[nodiscard]] QByteArray absolute() const { return base.isEmpty() ? path : base + '/' + path; }

    const QByteArray path;
    const QByteArray base; ///< Empty for an absolute path
    const bool isDirectory;
};

namespace {

const __CFURL& url(const Object& object) {
    return static_cast<const __CFURL&>(object);
}

CFURLRef makeUrl(const QByteArray& path, bool isDirectory) {
    if (path.isEmpty())
        return nullptr;
    const QByteArray base =
        path.startsWith('/') ? QByteArray() : QFile::encodeName(QDir::currentPath());
    return new (std::nothrow) __CFURL(path, base, isDirectory);
}

} // namespace

namespace Korvex::Cf {

bool sameUrl(const Object& one, const Object& other) {
    return url(one).path == url(other).path && url(one).base == url(other).base &&
           url(one).isDirectory == url(other).isDirectory;
}

CFHashCode hashOfUrl(const Object& object) {
    return static_cast<CFHashCode>(qHash(url(object).path));
}

void freeUrl(const Object* object) {
    delete static_cast<const __CFURL*>(object);
}

} // namespace Korvex::Cf

CFTypeID CFURLGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Url);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex length,
                                                 Boolean isDirectory) {
    if (!path || length <= 0)
        return nullptr;
    return makeUrl(QByteArray(reinterpret_cast<const char*>(path), static_cast<qsizetype>(length)),
                   isDirectory != 0);
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory) {
    if (!path || style != kCFURLPOSIXPathStyle)
        return nullptr;
    return makeUrl(QFile::encodeName(text(path)), isDirectory != 0);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex size) {
    if (!url || !buffer)
        return 0;
    const QByteArray path = resolveAgainstBase ? url->absolute() : url->path;
    if (path.size() >= size)
        return 0;
    std::memcpy(buffer, path.constData(), static_cast<std::size_t>(path.size()) + 1);
    return 1;
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    if (!url || style != kCFURLPOSIXPathStyle)
        return nullptr;
    return makeString(QFile::decodeName(url->path));
}
