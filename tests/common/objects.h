#pragma once

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation.h>

#include <QByteArray>
#include <QString>

#include <initializer_list>
#include <utility>

/// Property-list objects for tests, written down shortly. Each is owned by its holder.
namespace KxTest {

using Object = Korvex::Cf::Owned<CFTypeRef>;

inline Object text(const QString& value) {
    return Object(CFStringCreateWithCharacters(
        nullptr, reinterpret_cast<const UniChar*>(value.utf16()), value.size()));
}

inline Object number(long long value) {
    return Object(CFNumberCreate(nullptr, kCFNumberLongLongType, &value));
}

inline Object real(double value) {
    return Object(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

inline Object data(const QByteArray& bytes) {
    return Object(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.constData()), bytes.size()));
}

inline Object boolean(bool value) {
    return Object(CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse));
}

inline Object date(double value) {
    return Object(CFDateCreate(nullptr, value));
}

inline Object array(std::initializer_list<const Object*> values) {
    CFMutableArrayRef made = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    for (const Object* value : values)
        CFArrayAppendValue(made, value->get());
    return Object(made);
}

inline Object dictionary(std::initializer_list<std::pair<QString, const Object*>> entries) {
    CFMutableDictionaryRef made = CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (const auto& [name, value] : entries)
        CFDictionarySetValue(made, text(name).get(), value->get());
    return Object(made);
}

inline QString textOf(CFTypeRef object) {
    if (CFGetTypeID(object) != CFStringGetTypeID())
        return QStringLiteral("(no string)");
    const auto* string = static_cast<CFStringRef>(object);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(CFStringGetCharactersPtr(string)),
                              CFStringGetLength(string));
}

inline bool same(const Object& one, const Object& other) {
    return CFEqual(one.get(), other.get()) != 0;
}

} // namespace KxTest
