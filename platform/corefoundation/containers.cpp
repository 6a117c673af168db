#include "platform/corefoundation/containers.h"

#include <new>
#include <set>
#include <utility>

namespace Korvex::Cf {

namespace {

using Pair = std::pair<const void*, const void*>;

/// Compares two trees of objects, pair by pair.
class Comparison {
public:
    bool run(CFTypeRef one, CFTypeRef other) {
        waiting.emplace_back(one, other);
        while (!waiting.empty()) {
            const Pair next = waiting.back();
            waiting.pop_back();
            if (next.first != next.second && !compare(next))
                return false;
        }
        return true;
    }

private:
    bool compare(const Pair& pair) {
        const Object* one = object(pair.first);
        const Object* other = object(pair.second);
        if (!one || !other || one->type != other->type)
            return false;
        if (one->type == Type::Array)
            return !seen.insert(pair).second || compare(*static_cast<const __CFArray*>(one),
                                                        *static_cast<const __CFArray*>(other));
        if (one->type == Type::Dictionary)
            return !seen.insert(pair).second || compare(*static_cast<const __CFDictionary*>(one),
                                                        *static_cast<const __CFDictionary*>(other));
        return sameScalar(*one, *other);
    }

    bool compare(const __CFArray& one, const __CFArray& other) {
        if (one.values.size() != other.values.size())
            return false;
        for (std::size_t i = 0; i < one.values.size(); ++i) {
            if (!compare(one.callBacks.equal, one.values[i], other.values[i]))
                return false;
        }
        return true;
    }

    bool compare(const __CFDictionary& one, const __CFDictionary& other) {
        if (one.entries.size() != other.entries.size())
            return false;
        for (const __CFDictionary::Entry& entry : one.entries) {
            const std::uint32_t place = other.find(entry.key);
            if (place == SlotTable::none ||
                !compare(one.valueCallBacks.equal, entry.value, other.entries[place].value))
                return false;
        }
        return true;
    }

    bool compare(Boolean (*equal)(const void*, const void*), const void* one, const void* other) {
        if (one == other)
            return true;
        if (equal != CFEqual)
            return equal && equal(one, other);
        waiting.emplace_back(one, other);
        return true;
    }

    std::vector<Pair> waiting;
    std::set<Pair> seen; // containers that hold one another in a circle end here
};

} // namespace

bool sameTree(CFTypeRef one, CFTypeRef other) {
    if (one == other)
        return true;
    // What holds nothing is compared without memory, the want of which would make equals differ.
    if (!isA(one, Type::Array) && !isA(one, Type::Dictionary))
        return sameKey(one, other) != 0;
    try {
        return Comparison().run(one, other);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

const void* retainObject(CFAllocatorRef, const void* object) {
    return CFRetain(object);
}

void releaseObject(CFAllocatorRef, const void* object) {
    CFRelease(object);
}

} // namespace Korvex::Cf
