/// \file
/// Arrays.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef const void* (*CFArrayRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFArrayReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFArrayCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFArrayEqualCallBack)(const void* one, const void* other);

/// What is done with elements as they come and go. Each may be null; `copyDescription` is never
/// called.
typedef struct CFArrayCallBacks {
    CFIndex version;
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
} CFArrayCallBacks;

/// For elements that are property-list objects.
KXQTS_C_API const CFArrayCallBacks kCFTypeArrayCallBacks;

/// The type of arrays, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFArrayGetTypeID(void);

/// Makes an array that never changes.
/// \param callBacks Null: the elements are plain values.
KXQTS_C_API CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                     const CFArrayCallBacks* callBacks);
/// Makes an array of another's elements that never changes.
KXQTS_C_API CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array);

/// Makes an empty array. \param capacity A hint, and no limit.
KXQTS_C_API CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                   const CFArrayCallBacks* callBacks);
/// Makes an array of another's elements that can be changed.
/// \param capacity A hint, and no limit.
KXQTS_C_API CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                       CFArrayRef array);

/// How many elements there are.
KXQTS_C_API CFIndex CFArrayGetCount(CFArrayRef array);

/// An element; null at a place outside the array.
KXQTS_C_API const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

/// Copies elements. What of \a range lies outside the array is left out.
KXQTS_C_API void CFArrayGetValues(CFArrayRef array, CFRange range, const void** values);

/// Whether an element in \a range equals a value.
KXQTS_C_API Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value);

/// The place of the first equal element in \a range; −1 when there is none.
KXQTS_C_API CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value);

/// \name Changes
/// They do nothing to an array that never changes, at a place outside the array, and when there is
/// no memory.
/// @{

/// Adds an element behind the last.
KXQTS_C_API void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
/// Puts an element in front of the one at \a index.
KXQTS_C_API void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index,
                                           const void* value);
/// Replaces an element, or appends one at the place behind the last.
KXQTS_C_API void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value);
/// Removes an element; those behind it move up.
KXQTS_C_API void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index);
/// Removes all elements.
KXQTS_C_API void CFArrayRemoveAllValues(CFMutableArrayRef array);
/// @}
