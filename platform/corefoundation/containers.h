#pragma once

#include "platform/corefoundation/object.h"
#include "platform/slottable.h"

#include <KxQts/corefoundation/array.h>
#include <KxQts/corefoundation/dictionary.h>

#include <vector>

struct __CFArray : Korvex::Cf::Object {
    __CFArray(const CFArrayCallBacks& toCall, bool changes)
        : Object(Korvex::Cf::Type::Array), callBacks(toCall), isMutable(changes) {}

    const CFArrayCallBacks callBacks;
    const bool isMutable;
    std::vector<const void*> values;
};

struct __CFDictionary : Korvex::Cf::Object {
    struct Entry {
        const void* key;
        const void* value;
        std::uint32_t hash;
    };

    __CFDictionary(const CFDictionaryKeyCallBacks& forKeys,
                   const CFDictionaryValueCallBacks& forValues, bool changes)
        : Object(Korvex::Cf::Type::Dictionary),
          keyCallBacks(forKeys),
          valueCallBacks(forValues),
          isMutable(changes) {}

    [[nodiscard]] std::uint32_t hashOf(const void* key) const;
    [[nodiscard]] std::uint32_t find(const void* key) const;
    [[nodiscard]] bool sameValues(const void* one, const void* other) const;
    /// Adds an entry that is not there. Throws `std::bad_alloc` with nothing changed.
    void add(const void* key, const void* value);
    void replace(std::uint32_t place, const void* value);
    void remove(std::uint32_t place);

    const CFDictionaryKeyCallBacks keyCallBacks;
    const CFDictionaryValueCallBacks valueCallBacks;
    const bool isMutable;
    std::vector<Entry> entries;
    Korvex::SlotTable places;
};

namespace Korvex::Cf {

/// Empty containers of property-list objects, which whoever makes them fills whatever they are to
/// be for others; null when there is no memory.
[[nodiscard]] __CFArray* makeArray(bool isMutable);
[[nodiscard]] __CFDictionary* makeDictionary(bool isMutable);

/// Hands an object over to a container. Throws `std::bad_alloc`; the object is released then.
void adopt(__CFArray& array, CFTypeRef value);
/// As above. A key that is there already loses its value.
void adopt(__CFDictionary& dictionary, CFTypeRef key, CFTypeRef value);

/// Whether two objects and all they hold are equal.
[[nodiscard]] bool sameTree(CFTypeRef one, CFTypeRef other);

void freeArray(const __CFArray* array, Disposal& contents);
void freeDictionary(const __CFDictionary* dictionary, Disposal& contents);

/// The call-back that takes or gives up references to property-list objects.
const void* retainObject(CFAllocatorRef, const void* object);
void releaseObject(CFAllocatorRef, const void* object);

/// Gives up one element the way its container was told to.
template <class CallBack>
void letGo(CallBack release, const void* value, Disposal& contents) {
    if (release == releaseObject)
        contents.release(value);
    else if (release)
        release(nullptr, value);
}

} // namespace Korvex::Cf
