#include <KxQts/registry/prefs.h>

#include "platform/corefoundation/object.h"
#include "platform/withoutmemory.h"
#include "registry/keypath.h"

// The same paths in objects that are in a program's hands.

namespace Korvex {

namespace {

using PropertyList::Kind;

/// Objects as \ref KeyPath::follow takes values.
struct Objects {
    using Value = CFTypeRef;
    static constexpr CFTypeRef nothing = nullptr;

    [[nodiscard]] static Kind kind(CFTypeRef value) {
        if (Cf::isA(value, Cf::Type::Dictionary))
            return Kind::Dictionary;
        return Cf::isA(value, Cf::Type::Array) ? Kind::Array : Kind::Other;
    }
    [[nodiscard]] static CFTypeRef member(CFTypeRef dictionary, QStringView name) {
        const Cf::Owned<CFStringRef> key(createCFString(name.toString()));
        return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key.get());
    }
    [[nodiscard]] static CFTypeRef element(CFTypeRef array, std::size_t index) {
        return CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), static_cast<CFIndex>(index));
    }
};

CFTypeRef valueIn(CFTypeRef container, const QString& path, unsigned long typeId) {
    constexpr unsigned long anyType = ~0UL;
    return CFRetain(KeyPath::follow(Objects(), container, path, typeId == anyType));
}

/// A mutable dictionary in the place of what a name stands for; null when there is no memory.
CFMutableDictionaryRef replaceByMutable(CFMutableDictionaryRef in, CFStringRef name) {
    CFTypeRef old = CFDictionaryGetValue(in, name);
    CFMutableDictionaryRef made =
        Cf::isA(old, Cf::Type::Dictionary)
            ? CFDictionaryCreateMutableCopy(nullptr, 0, static_cast<CFDictionaryRef>(old))
            : CFDictionaryCreateMutable(nullptr, 1, &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks);
    if (!made)
        return nullptr;
    CFDictionarySetValue(in, name, made);
    CFRelease(made); // its place keeps it
    return CFDictionaryGetValue(in, name) == made ? made : nullptr;
}

} // namespace

CFStringRef createCFString(const QString& text) {
    return keepingErrorNumber(nullptr, [&] {
        return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(text.utf16()),
                                            static_cast<CFIndex>(text.size()));
    });
}

const void* getCFDictionaryKeyValue(const __CFDictionary* dictionary, const QString& path,
                                    unsigned long typeId) {
    return keepingErrorNumber(
        nullptr, [&] { return dictionary ? valueIn(dictionary, path, typeId) : nullptr; });
}

const void* getCFArrayKeyValue(const __CFArray* array, const QString& path, unsigned long typeId) {
    return keepingErrorNumber(nullptr,
                              [&] { return array ? valueIn(array, path, typeId) : nullptr; });
}

bool setCFDictionaryKeyValue(__CFDictionary* dictionary, const QString& path,
                             const void* value) try {
    const ErrorNumberKept untilReturned;
    QStringView left = path;
    while (dictionary) {
        const KeyPath::Split next = KeyPath::split(left);
        const Cf::Owned<CFStringRef> name(createCFString(next.head.toString()));
        if (!name)
            return false;
        if (next.rest.isEmpty()) {
            if (value)
                CFDictionarySetValue(dictionary, name.get(), value);
            else
                CFDictionaryRemoveValue(dictionary, name.get());
            return true;
        }
        dictionary = replaceByMutable(dictionary, name.get());
        left = next.rest;
    }
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace Korvex
