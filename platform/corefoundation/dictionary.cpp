#include "platform/corefoundation/containers.h"

#include <functional>
#include <new>

using namespace Korvex::Cf;
using Korvex::SlotTable;

constinit const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, retainObject, releaseObject, nullptr, sameKey, CFHash};
constinit const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {
    0, retainObject, releaseObject, nullptr, sameKey, CFHash};
constinit const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {
    0, retainObject, releaseObject, nullptr, CFEqual};

namespace {

constexpr CFDictionaryKeyCallBacks plainKeys = {0, nullptr, nullptr, nullptr, nullptr, nullptr};
constexpr CFDictionaryValueCallBacks plainValues = {0, nullptr, nullptr, nullptr, nullptr};

__CFDictionary* newDictionary(const CFDictionaryKeyCallBacks* keys,
                              const CFDictionaryValueCallBacks* values, bool isMutable) {
    return new (std::nothrow)
        __CFDictionary(keys ? *keys : plainKeys, values ? *values : plainValues, isMutable);
}

/// Adds entries to a new dictionary and frees it when they do not fit into memory.
template <class Add>
__CFDictionary* filled(__CFDictionary* dictionary, std::size_t count, Add add) {
    try {
        if (dictionary) {
            dictionary->entries.reserve(count);
            add(*dictionary);
        }
        return dictionary;
    } catch (const std::exception&) { // as many as nobody can have are refused otherwise
        CFRelease(dictionary);
        return nullptr;
    }
}

__CFDictionary* copied(CFDictionaryRef dictionary, bool isMutable) {
    if (!dictionary)
        return nullptr;
    return filled(newDictionary(&dictionary->keyCallBacks, &dictionary->valueCallBacks, isMutable),
                  dictionary->entries.size(), [&](__CFDictionary& copy) {
                      for (const __CFDictionary::Entry& entry : dictionary->entries)
                          copy.add(entry.key, entry.value);
                  });
}

/// Sets or adds as far as the caller allows.
void put(CFMutableDictionaryRef dictionary, const void* key, const void* value, bool mayReplace,
         bool mayAdd) {
    if (!dictionary || !dictionary->isMutable)
        return;
    try {
        const std::uint32_t place = dictionary->find(key);
        if (place != SlotTable::none && mayReplace)
            dictionary->replace(place, value);
        else if (place == SlotTable::none && mayAdd)
            dictionary->add(key, value);
    } catch (const std::bad_alloc&) {
        return; // as documented: nothing changes
    }
}

} // namespace

std::uint32_t __CFDictionary::hashOf(const void* key) const {
    const std::size_t hash =
        keyCallBacks.hash ? keyCallBacks.hash(key) : std::hash<const void*>{}(key) >> 4;
    return static_cast<std::uint32_t>(hash ^ (hash >> 16 >> 16));
}

std::uint32_t __CFDictionary::find(const void* key) const {
    return places.find(hashOf(key), [&](std::uint32_t place) {
        const void* candidate = entries[place].key;
        return candidate == key || (keyCallBacks.equal && keyCallBacks.equal(candidate, key));
    });
}

bool __CFDictionary::sameValues(const void* one, const void* other) const {
    return one == other || (valueCallBacks.equal && valueCallBacks.equal(one, other));
}

void __CFDictionary::add(const void* key, const void* value) {
    const std::uint32_t hash = hashOf(key);
    entries.push_back({key, value, hash});
    try {
        places.insert(hash, static_cast<std::uint32_t>(entries.size() - 1));
    } catch (const std::bad_alloc&) {
        entries.pop_back();
        throw;
    }
    if (keyCallBacks.retain)
        entries.back().key = keyCallBacks.retain(nullptr, key);
    if (valueCallBacks.retain)
        entries.back().value = valueCallBacks.retain(nullptr, value);
}

void __CFDictionary::replace(std::uint32_t place, const void* value) {
    const void* const old = entries[place].value;
    entries[place].value = valueCallBacks.retain ? valueCallBacks.retain(nullptr, value) : value;
    if (valueCallBacks.release)
        valueCallBacks.release(nullptr, old);
}

void __CFDictionary::remove(std::uint32_t place) {
    const Entry old = entries[place];
    const auto last = static_cast<std::uint32_t>(entries.size() - 1);
    places.erase(old.hash, place);
    if (place != last) {
        places.move(entries[last].hash, last, place);
        entries[place] = entries[last];
    }
    entries.pop_back();
    if (keyCallBacks.release)
        keyCallBacks.release(nullptr, old.key);
    if (valueCallBacks.release)
        valueCallBacks.release(nullptr, old.value);
}

namespace Korvex::Cf {

__CFDictionary* makeDictionary(bool isMutable) {
    return newDictionary(&kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks,
                         isMutable);
}

void adopt(__CFDictionary& dictionary, CFTypeRef key, CFTypeRef value) {
    const Owned<CFTypeRef> ownedKey(key);
    const Owned<CFTypeRef> ownedValue(value);
    const std::uint32_t place = dictionary.find(key);
    if (place == SlotTable::none)
        dictionary.add(key, value);
    else
        dictionary.replace(place, value);
}

void freeDictionary(const __CFDictionary* dictionary, Disposal& contents) {
    for (const __CFDictionary::Entry& entry : dictionary->entries) {
        letGo(dictionary->keyCallBacks.release, entry.key, contents);
        letGo(dictionary->valueCallBacks.release, entry.value, contents);
    }
    delete dictionary;
}

} // namespace Korvex::Cf

CFTypeID CFDictionaryGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Dictionary);
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (count < 0 || (count > 0 && (!keys || !values)))
        return nullptr;
    return filled(newDictionary(keyCallBacks, valueCallBacks, false),
                  static_cast<std::size_t>(count), [&](__CFDictionary& made) {
                      for (CFIndex i = 0; i < count; ++i) {
                          if (made.find(keys[i]) == SlotTable::none)
                              made.add(keys[i], values[i]);
                      }
                  });
}

CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef, CFDictionaryRef dictionary) {
    if (dictionary && !dictionary->isMutable)
        return static_cast<CFDictionaryRef>(CFRetain(dictionary));
    return copied(dictionary, false);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    return newDictionary(keyCallBacks, valueCallBacks, true);
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex,
                                                     CFDictionaryRef dictionary) {
    return copied(dictionary, true);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return dictionary ? static_cast<CFIndex>(dictionary->entries.size()) : 0;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return CFDictionaryGetValueIfPresent(dictionary, key, nullptr);
}

Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value) {
    if (!dictionary)
        return 0;
    for (const __CFDictionary::Entry& entry : dictionary->entries) {
        if (dictionary->sameValues(entry.value, value))
            return 1;
    }
    return 0;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const void* value = nullptr;
    (void)CFDictionaryGetValueIfPresent(dictionary, key, &value);
    return value;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value) {
    const std::uint32_t place = dictionary ? dictionary->find(key) : SlotTable::none;
    if (place == SlotTable::none)
        return 0;
    if (value)
        *value = dictionary->entries[place].value;
    return 1;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values) {
    const std::size_t count = dictionary ? dictionary->entries.size() : 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (keys)
            keys[i] = dictionary->entries[i].key;
        if (values)
            values[i] = dictionary->entries[i].value;
    }
}

void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier,
                               void* context) {
    if (!dictionary)
        return;
    for (const __CFDictionary::Entry& entry : dictionary->entries)
        applier(entry.key, entry.value, context);
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    put(dictionary, key, value, false, true);
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    put(dictionary, key, value, true, true);
}

void CFDictionaryReplaceValue(CFMutableDictionaryRef dictionary, const void* key,
                              const void* value) {
    put(dictionary, key, value, true, false);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    const std::uint32_t place =
        dictionary && dictionary->isMutable ? dictionary->find(key) : SlotTable::none;
    if (place != SlotTable::none)
        dictionary->remove(place);
}

void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary) {
    if (!dictionary || !dictionary->isMutable)
        return;
    std::vector<__CFDictionary::Entry> old;
    old.swap(dictionary->entries);
    dictionary->places.clear();
    for (const __CFDictionary::Entry& entry : old) {
        if (dictionary->keyCallBacks.release)
            dictionary->keyCallBacks.release(nullptr, entry.key);
        if (dictionary->valueCallBacks.release)
            dictionary->valueCallBacks.release(nullptr, entry.value);
    }
}
