#include "platform/corefoundation/containers.h"

#include <algorithm>
#include <new>

using namespace Korvex::Cf;

constinit const CFArrayCallBacks kCFTypeArrayCallBacks = {0, retainObject, releaseObject, nullptr,
                                                          CFEqual};

namespace {

constexpr CFArrayCallBacks plainValues = {0, nullptr, nullptr, nullptr, nullptr};

__CFArray* newArray(const CFArrayCallBacks* callBacks, bool isMutable) {
    return new (std::nothrow) __CFArray(callBacks ? *callBacks : plainValues, isMutable);
}

const void* retained(const __CFArray& array, const void* value) {
    return array.callBacks.retain ? array.callBacks.retain(nullptr, value) : value;
}

void release(const __CFArray& array, const void* value) {
    if (array.callBacks.release)
        array.callBacks.release(nullptr, value);
}

bool isPlace(CFArrayRef array, CFIndex index, CFIndex behindLast = 0) {
    return array && index >= 0 && index < CFArrayGetCount(array) + behindLast;
}

/// The part of a range that lies inside the array.
CFRange inside(CFArrayRef array, CFRange range) {
    const CFIndex count = CFArrayGetCount(array);
    const CFIndex begin = std::clamp(range.location, CFIndex(0), count);
    const CFIndex length = std::clamp(range.length, CFIndex(0), count - begin);
    return CFRangeMake(begin, length);
}

__CFArray* filled(__CFArray* array, const void* const* values, CFIndex count) {
    if (!array)
        return nullptr;
    try {
        array->values.reserve(static_cast<std::size_t>(count));
    } catch (const std::exception&) { // as many as nobody can have are refused otherwise
        delete array;
        return nullptr;
    }
    for (CFIndex i = 0; i < count; ++i)
        array->values.push_back(retained(*array, values[i]));
    return array;
}

__CFArray* copied(CFArrayRef array, bool isMutable) {
    return array ? filled(newArray(&array->callBacks, isMutable), array->values.data(),
                          CFArrayGetCount(array))
                 : nullptr;
}

} // namespace

namespace Korvex::Cf {

__CFArray* makeArray(bool isMutable) {
    return newArray(&kCFTypeArrayCallBacks, isMutable);
}

void adopt(__CFArray& array, CFTypeRef value) {
    Owned<CFTypeRef> owned(value);
    array.values.push_back(value);
    (void)owned.release();
}

void freeArray(const __CFArray* array, Disposal& contents) {
    for (const void* value : array->values)
        letGo(array->callBacks.release, value, contents);
    delete array;
}

} // namespace Korvex::Cf

CFTypeID CFArrayGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Array);
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks) {
    if (count < 0 || (count > 0 && !values))
        return nullptr;
    return filled(newArray(callBacks, false), values, count);
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef, CFArrayRef array) {
    if (array && !array->isMutable)
        return static_cast<CFArrayRef>(CFRetain(array));
    return copied(array, false);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks* callBacks) {
    return newArray(callBacks, true);
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef, CFIndex, CFArrayRef array) {
    return copied(array, true);
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    return array ? static_cast<CFIndex>(array->values.size()) : 0;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    return isPlace(array, index) ? array->values[static_cast<std::size_t>(index)] : nullptr;
}

void CFArrayGetValues(CFArrayRef array, CFRange range, const void** values) {
    const CFRange copied = inside(array, range);
    if (copied.length > 0)
        std::copy_n(array->values.begin() + copied.location, copied.length, values);
}

Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value) {
    return CFArrayGetFirstIndexOfValue(array, range, value) >= 0 ? 1 : 0;
}

CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value) {
    const CFRange searched = inside(array, range);
    for (CFIndex i = searched.location; i < searched.location + searched.length; ++i) {
        const void* element = array->values[static_cast<std::size_t>(i)];
        if (element == value || (array->callBacks.equal && array->callBacks.equal(element, value)))
            return i;
    }
    return -1;
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    CFArrayInsertValueAtIndex(array, CFArrayGetCount(array), value);
}

void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value) {
    if (!isPlace(array, index, 1) || !array->isMutable)
        return;
    try {
        array->values.insert(array->values.begin() + index, value);
    } catch (const std::bad_alloc&) {
        return;
    }
    array->values[static_cast<std::size_t>(index)] = retained(*array, value);
}

void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value) {
    if (!isPlace(array, index) || !array->isMutable)
        return CFArrayInsertValueAtIndex(array, index, value);
    const void*& element = array->values[static_cast<std::size_t>(index)];
    const void* const old = element;
    element = retained(*array, value);
    release(*array, old);
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index) {
    if (!isPlace(array, index) || !array->isMutable)
        return;
    const void* const old = array->values[static_cast<std::size_t>(index)];
    array->values.erase(array->values.begin() + index);
    release(*array, old);
}

void CFArrayRemoveAllValues(CFMutableArrayRef array) {
    if (!array || !array->isMutable)
        return;
    std::vector<const void*> old;
    old.swap(array->values);
    for (const void* value : old)
        release(*array, value);
}
