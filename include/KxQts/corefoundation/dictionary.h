/// \file
/// Dictionaries. Entries stand in the order in which they were added, until one is removed: the
/// last one takes its place.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* one, const void* other);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);
typedef void (*CFDictionaryApplierFunction)(const void* key, const void* value, void* context);

/// What is done with keys as they come, are compared and go. Each may be null; `copyDescription` is
/// never called.
typedef struct CFDictionaryKeyCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
    CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

/// The same for values.
typedef struct CFDictionaryValueCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

/// For keys that are property-list objects. Keys that are arrays or dictionaries themselves are
/// told apart by identity.
KXQTS_C_API const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
/// As `kCFTypeDictionaryKeyCallBacks`: strings never change, so none is copied.
KXQTS_C_API const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks;
/// For values that are property-list objects.
KXQTS_C_API const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

/// The type of dictionaries, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFDictionaryGetTypeID(void);

/// Makes a dictionary that never changes. Of equal keys the first one counts.
/// \param keyCallBacks,valueCallBacks Null: the keys or values are plain values.
KXQTS_C_API CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys,
                                               const void** values, CFIndex count,
                                               const CFDictionaryKeyCallBacks* keyCallBacks,
                                               const CFDictionaryValueCallBacks* valueCallBacks);
/// Makes a dictionary of another's entries that never changes.
KXQTS_C_API CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator,
                                                   CFDictionaryRef dictionary);

/// Makes an empty dictionary. \param capacity A hint, and no limit.
KXQTS_C_API CFMutableDictionaryRef CFDictionaryCreateMutable(
    CFAllocatorRef allocator, CFIndex capacity, const CFDictionaryKeyCallBacks* keyCallBacks,
    const CFDictionaryValueCallBacks* valueCallBacks);
/// Makes a dictionary of another's entries that can be changed.
/// \param capacity A hint, and no limit.
KXQTS_C_API CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator,
                                                                 CFIndex capacity,
                                                                 CFDictionaryRef dictionary);

/// How many entries there are.
KXQTS_C_API CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/// Whether there is an entry of a key.
KXQTS_C_API Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);
/// Whether an entry has a value.
KXQTS_C_API Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value);

/// The value of a key; null when there is none.
KXQTS_C_API const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

/// Tells a null value from none. \param value Receives the value if there is one; may be null.
KXQTS_C_API Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                                  const void** value);

/// Copies all keys and values, in the same order. Either may be null.
KXQTS_C_API void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                              const void** values);

/// Calls a function for every entry. It must not change the dictionary.
KXQTS_C_API void CFDictionaryApplyFunction(CFDictionaryRef dictionary,
                                           CFDictionaryApplierFunction applier, void* context);

/// \name Changes
/// They do nothing to a dictionary that never changes and when there is no memory.
/// @{

/// Adds an entry if there is none of that key.
KXQTS_C_API void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key,
                                      const void* value);
/// Adds an entry or replaces its value.
KXQTS_C_API void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key,
                                      const void* value);
/// Replaces the value of a key that there is.
KXQTS_C_API void CFDictionaryReplaceValue(CFMutableDictionaryRef dictionary, const void* key,
                                          const void* value);
/// Removes the entry of a key.
KXQTS_C_API void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
/// Removes all entries.
KXQTS_C_API void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary);
/// @}
