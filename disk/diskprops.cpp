#include "platform/corefoundation/object.h"
#include "platform/referencecounted.h"

#include <KxQts/disk/diskobjects.h>
#include <KxQts/errors.h>
#include <KxQts/registry/prefs.h>

#include <array>
#include <iterator>
#include <new>

namespace Korvex {

namespace {

constexpr CFTypeID anyType = ~CFTypeID{0};
constexpr CFIndex longestPath = 260; // with the zero at its end

/// Negative numbers are no properties either.
bool isProperty(int index) {
    return static_cast<unsigned>(index) < std::size(dpKeys);
}

Cf::Owned<CFTypeRef> lookUp(CFDictionaryRef description, int index) {
    return Cf::Owned<CFTypeRef>(
        getCFDictionaryKeyValue(description, QString::fromLatin1(dpKeys[index]), anyType));
}

unsigned readText(CFStringRef string, QString& value) {
    const CFIndex length = CFStringGetLength(string);
    try {
        QString text(static_cast<qsizetype>(length), Qt::Uninitialized);
        CFStringGetCharacters(string, CFRangeMake(0, length),
                              reinterpret_cast<UniChar*>(text.data()));
        value = text;
    } catch (const std::bad_alloc&) {
        return Error::BadDeviceType;
    }
    return Error::None;
}

unsigned readPath(CFURLRef url, QString& value) {
    std::array<UInt8, longestPath> path{};
    if (!CFURLGetFileSystemRepresentation(url, true, path.data(), longestPath))
        return Error::BadDeviceType;
    value = QString::fromLatin1(reinterpret_cast<const char*>(path.data()));
    return Error::None;
}

} // namespace

const char* const dpKeys[31] = {
    "DAMediaBlockSize",  "DAMediaBSDName",   "DADeviceUnit",     "DADevicePath",
    "DAVolumeMountable", "DABusPath",        "DADeviceModel",    "DAMediaEjectable",
    "DAMediaBSDMajor",   "DAMediaContent",   "DAMediaPath",      "DAVolumeNetwork",
    "DAMediaSize",       "DAMediaWhole",     "DAMediaWritable",  "DAVolumeName",
    "DAMediaRemovable",  "DAMediaName",      "DAAppearanceTime", "DAMediaLeaf",
    "DAMediaBSDMinor",   "DAMediaKind",      "DAVolumeUUID",     "DADeviceProtocol",
    "DABusName",         "DADeviceInternal", "DAVolumeKind",     "DADeviceRevision",
    "DAMediaIcon",       "DAMediaBSDUnit",   "DAVolumePath",
};

QString getPropName(int index) {
    return isProperty(index) ? QString::fromLatin1(dpKeys[index]) : QString();
}

WDiskProps::~WDiskProps() {
    CFRelease(description);
}

int WDiskProps::retain() {
    return ++refCount;
}

int WDiskProps::release() {
    return giveUpReference(this);
}

unsigned int WDiskProps::getIntegerProperty(int index, unsigned int& value) {
    // The number differs from that of the other two; callers tell the calls apart by it.
    if (!isProperty(index))
        return Error::BadKey;
    const auto found = lookUp(description, index);
    if (!found)
        return Error::ElementNotFound;
    SInt32 number = 0;
    if (CFGetTypeID(found.get()) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(found.get()), kCFNumberSInt32Type, &number))
        return Error::BadDeviceType;
    value = static_cast<unsigned int>(number);
    return Error::None;
}

unsigned int WDiskProps::getBooleanProperty(int index, bool& value) {
    if (!isProperty(index))
        return Error::IndexAbsent;
    const auto found = lookUp(description, index);
    if (!found)
        return Error::ElementNotFound;
    if (CFGetTypeID(found.get()) != CFBooleanGetTypeID())
        return Error::BadDeviceType;
    value = CFBooleanGetValue(static_cast<CFBooleanRef>(found.get())) != 0;
    return Error::None;
}

unsigned int WDiskProps::getQStringProperty(int index, QString& value) {
    if (!isProperty(index))
        return Error::IndexAbsent;
    const auto found = lookUp(description, index);
    if (!found)
        return Error::ElementNotFound;
    const CFTypeID type = CFGetTypeID(found.get());
    if (type == CFStringGetTypeID())
        return readText(static_cast<CFStringRef>(found.get()), value);
    if (type == CFURLGetTypeID())
        return readPath(static_cast<CFURLRef>(found.get()), value);
    return Error::BadDeviceType;
}

} // namespace Korvex
