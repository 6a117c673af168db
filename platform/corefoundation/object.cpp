#include "platform/corefoundation/object.h"

#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/scalars.h"
#include "platform/corefoundation/string.h"

using namespace Korvex::Cf;

struct __CFAllocator : Object {
    using Object::Object;
};

namespace {

constinit __CFAllocator nullAllocator(Type::Allocator, false);

/// \return Whether that was the last reference.
bool giveUp(const Object& one) {
    if (one.references.load(std::memory_order_relaxed) == Object::immortal)
        return false;
    return one.references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

} // namespace

constinit const CFAllocatorRef kCFAllocatorDefault = nullptr;
constinit const CFAllocatorRef kCFAllocatorNull = &nullAllocator;

namespace Korvex::Cf {

void Disposal::release(CFTypeRef cf) {
    if (!cf || !giveUp(*object(cf)))
        return;
    object(cf)->nextToFree = waiting;
    waiting = object(cf);
}

void Disposal::run() {
    while (const Object* freed = waiting) {
        waiting = freed->nextToFree;
        free(freed, *this);
    }
}

void Disposal::free(const Object* freed, Disposal& contents) {
    switch (freed->type) {
    case Type::Array:
        return freeArray(static_cast<const __CFArray*>(freed), contents);
    case Type::Dictionary:
        return freeDictionary(static_cast<const __CFDictionary*>(freed), contents);
    case Type::String:
        return freeString(static_cast<const __CFString*>(freed));
    default:
        return freeScalar(freed);
    }
}

Boolean sameKey(const void* one, const void* other) {
    if (one == other)
        return true;
    if (!one || !other || object(one)->type != object(other)->type)
        return false;
    return sameScalar(*object(one), *object(other)) ? 1 : 0;
}

bool sameScalar(const Object& one, const Object& other) {
    if (one.type == Type::String)
        return units(static_cast<const __CFString*>(&one)) ==
               units(static_cast<const __CFString*>(&other));
    return sameValue(one, other);
}

} // namespace Korvex::Cf

CFTypeRef CFRetain(CFTypeRef cf) {
    if (cf && object(cf)->references.load(std::memory_order_relaxed) != Object::immortal)
        object(cf)->references.fetch_add(1, std::memory_order_relaxed);
    return cf;
}

void CFRelease(CFTypeRef cf) {
    Disposal disposal;
    disposal.release(cf);
    disposal.run();
}

CFIndex CFGetRetainCount(CFTypeRef cf) {
    if (!cf)
        return 0;
    const std::uint32_t count = object(cf)->references.load(std::memory_order_relaxed);
    return count == Object::immortal ? static_cast<CFIndex>(~0UL >> 1)
                                     : static_cast<CFIndex>(count);
}

CFTypeID CFGetTypeID(CFTypeRef cf) {
    return cf ? static_cast<CFTypeID>(object(cf)->type) : 0;
}

Boolean CFEqual(CFTypeRef one, CFTypeRef other) {
    return sameTree(one, other) ? 1 : 0;
}

CFHashCode CFHash(CFTypeRef cf) {
    if (!cf)
        return 0;
    switch (object(cf)->type) {
    case Type::Array:
        return static_cast<CFHashCode>(CFArrayGetCount(static_cast<CFArrayRef>(cf)));
    case Type::Dictionary:
        return static_cast<CFHashCode>(CFDictionaryGetCount(static_cast<CFDictionaryRef>(cf)));
    case Type::String:
        return hashOf(units(static_cast<CFStringRef>(cf)));
    default:
        return hashOfValue(*object(cf));
    }
}
