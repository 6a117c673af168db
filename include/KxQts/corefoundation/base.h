/// \file
/// What property-list objects of every type have in common.
#pragma once

#include <KxQts/export.h>

#include <stdint.h>

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef uint16_t UniChar; ///< One UTF-16 code unit

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef unsigned long CFOptionFlags;

/// Any object; null where there is none.
typedef const void* CFTypeRef;
/// Any object that a property list can hold.
typedef CFTypeRef CFPropertyListRef;

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDate* CFDateRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFURL* CFURLRef;

/// A run of elements.
typedef struct CFRange {
    CFIndex location;
    CFIndex length;
} CFRange;

/// A range from its first place and its length.
static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range;
    range.location = location;
    range.length = length;
    return range;
}

typedef CFIndex CFComparisonResult;

enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };

/// The default allocator, null.
KXQTS_C_API const CFAllocatorRef kCFAllocatorDefault;
/// As a deallocator: the bytes are the caller's and outlive the object.
KXQTS_C_API const CFAllocatorRef kCFAllocatorNull;

/// Takes one more reference. Null is allowed. \return The object.
KXQTS_C_API CFTypeRef CFRetain(CFTypeRef object);

/// Gives up one reference, and the object with the last one. Null is allowed.
KXQTS_C_API void CFRelease(CFTypeRef object);

/// How many references there are. The constants have no count and tell the largest number.
KXQTS_C_API CFIndex CFGetRetainCount(CFTypeRef object);

/// The type of an object; 0 for null. Objects are of one type exactly if these are equal. All bits
/// set is no object's type.
KXQTS_C_API CFTypeID CFGetTypeID(CFTypeRef object);

/// Whether two objects have the same type and contents. Null equals null only.
KXQTS_C_API Boolean CFEqual(CFTypeRef one, CFTypeRef other);

/// A number that is the same for equal objects.
KXQTS_C_API CFHashCode CFHash(CFTypeRef object);
