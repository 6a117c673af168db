#include <KxQts/registry/prefs.h>

#include "platform/corefoundation/object.h"
#include "platform/corefoundation/string.h"
#include "platform/withoutmemory.h"

#include <cstring>

// Values in the types that registries and profiles have.

namespace Korvex {

namespace {

using Cf::Owned;
using Cf::Type;

constexpr unsigned regSz = 1;
constexpr unsigned regBinary = 3;
constexpr unsigned regDword = 4;
constexpr unsigned regQword = 11;
constexpr qsizetype dwordSize = 4;
constexpr qsizetype qwordSize = 8;
constexpr unsigned long anyType = ~0UL;

CFDataRef dataOver(const QByteArray& bytes) {
    return CFDataCreateWithBytesNoCopy(nullptr, reinterpret_cast<const UInt8*>(bytes.constData()),
                                       static_cast<CFIndex>(bytes.size()), kCFAllocatorNull);
}

QByteArray bytesOf(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
            static_cast<qsizetype>(CFDataGetLength(data))};
}

CFStringRef stringOfUnits(const QByteArray& units) {
    QString text(units.size() / 2, Qt::Uninitialized);
    std::memcpy(text.data(), units.constData(), static_cast<std::size_t>(text.size()) * 2);
    return createCFString(text);
}

CFNumberRef numberOf(SInt32 value) {
    return CFNumberCreate(nullptr, kCFNumberSInt32Type, &value);
}

CFNumberRef numberOfBytes(const QByteArray& bytes) {
    SInt32 value = 0;
    if (bytes.size() < dwordSize)
        return nullptr;
    std::memcpy(&value, bytes.constData(), dwordSize);
    return numberOf(value);
}

/// The object that a registry value is stored as; null for one that is refused.
CFTypeRef objectOf(unsigned type, const QByteArray& data) {
    switch (type) {
    case regSz:
        return stringOfUnits(data);
    case regBinary:
        return dataOver(data);
    case regDword:
        return numberOfBytes(data);
    case regQword:
        return data.size() == qwordSize ? dataOver(data) : nullptr;
    default:
        return nullptr;
    }
}

/// Makes a registry value of an object. \return Its type; 0 for what is none.
unsigned toRegistry(CFTypeRef object, QByteArray& data) {
    if (Cf::isA(object, Type::Number)) {
        SInt32 value = 0;
        if (!CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberSInt32Type, &value))
            return 0;
        data = QByteArray(reinterpret_cast<const char*>(&value), dwordSize);
        return regDword;
    }
    if (Cf::isA(object, Type::String)) {
        const auto* string = static_cast<CFStringRef>(object);
        data = QByteArray(reinterpret_cast<const char*>(CFStringGetCharactersPtr(string)),
                          static_cast<qsizetype>(CFStringGetLength(string)) * 2);
        return regSz;
    }
    if (!Cf::isA(object, Type::Data))
        return 0;
    data = bytesOf(static_cast<CFDataRef>(object));
    return regBinary;
}

} // namespace

bool WPrefs::queryValue(const QString& name, unsigned* type, QByteArray& data) try {
    const ErrorNumberKept untilReturned;
    data.clear();
    const Owned<CFTypeRef> value(getObjectOfType(valuePath(name), anyType, userScope));
    const unsigned found = toRegistry(value.get(), data);
    if (found != 0 && type)
        *type = found;
    return found != 0;
} catch (const std::bad_alloc&) {
    return false;
}

bool WPrefs::setValue(const QString& name, unsigned type, const QByteArray& data) {
    return keepingErrorNumber(false, [&] {
        const Owned<CFTypeRef> value(objectOf(type, data));
        return value && putObject(valuePath(name), value.get(), userScope);
    });
}

bool WPrefs::getProfileString(const QString& ofPath, const __CFString* user, QString& out) try {
    const ErrorNumberKept untilReturned;
    const Owned<CFTypeRef> value(getObjectOfType(ofPath, CFStringGetTypeID(), user));
    if (!Cf::isA(value.get(), Type::String))
        return false;
    out = Cf::text(static_cast<CFStringRef>(value.get()));
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool WPrefs::getProfileInt(const QString& ofPath, const __CFString* user, int& out) {
    const Owned<CFTypeRef> value(getObjectOfType(ofPath, CFNumberGetTypeID(), user));
    return Cf::isA(value.get(), Type::Number) &&
           CFNumberGetValue(static_cast<CFNumberRef>(value.get()), kCFNumberSInt32Type, &out) != 0;
}

bool WPrefs::getProfileBool(const QString& ofPath, const __CFString* user, bool& out) {
    const Owned<CFTypeRef> value(getObjectOfType(ofPath, CFBooleanGetTypeID(), user));
    if (!Cf::isA(value.get(), Type::Boolean))
        return false;
    out = CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0;
    return true;
}

bool WPrefs::getProfileBinary(const QString& ofPath, const __CFString* user, QByteArray& out) try {
    const ErrorNumberKept untilReturned;
    out.clear();
    const Owned<CFTypeRef> value(getObjectOfType(ofPath, CFDataGetTypeID(), user));
    if (!Cf::isA(value.get(), Type::Data))
        return false;
    out = bytesOf(static_cast<CFDataRef>(value.get()));
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool WPrefs::setProfileString(const QString& toPath, const __CFString* user, const QString* v) {
    const Owned<CFStringRef> value(v ? createCFString(*v) : nullptr);
    return !v == !value && putObject(toPath, value.get(), user);
}

bool WPrefs::setProfileInt(const QString& toPath, const __CFString* user, int* v) {
    return keepingErrorNumber(false, [&] {
        const Owned<CFNumberRef> value(v ? numberOf(*v) : nullptr);
        return !v == !value && putObject(toPath, value.get(), user);
    });
}

bool WPrefs::setProfileBool(const QString& toPath, const __CFString* user, bool* v) {
    const void* const value = !v ? nullptr : *v ? kCFBooleanTrue : kCFBooleanFalse;
    return putObject(toPath, value, user);
}

bool WPrefs::setProfileBinary(const QString& toPath, const __CFString* user, const QByteArray* v) {
    return keepingErrorNumber(false, [&] {
        const Owned<CFDataRef> value(v ? dataOver(*v) : nullptr);
        return !v == !value && putObject(toPath, value.get(), user);
    });
}

} // namespace Korvex
