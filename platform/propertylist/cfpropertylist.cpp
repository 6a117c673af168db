#include <KxQts/corefoundation/propertylist.h>

#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/scalars.h"
#include "platform/corefoundation/string.h"
#include "platform/propertylist/document.h"

#include <new>

using namespace Korvex;
using PropertyList::Bytes;
using PropertyList::ByteView;
using PropertyList::Document;

namespace {

bool fill(Document& document, const __CFDictionary& dictionary) {
    for (const __CFDictionary::Entry& entry : dictionary.entries) {
        if (!Cf::isA(entry.key, Cf::Type::String) ||
            !document.set(document.top(), Cf::units(static_cast<CFStringRef>(entry.key)),
                          entry.value))
            return false;
    }
    return true;
}

CFDataRef dataOf(const __CFDictionary& dictionary) {
    Document document;
    Bytes file;
    const bool done =
        fill(document, dictionary) && document.write([&](ByteView head, ByteView tail) {
            file.assign(head.begin(), head.end());
            file.insert(file.end(), tail.begin(), tail.end());
            return true;
        });
    return done ? Cf::makeBytes(Cf::Type::Data, file.data(), static_cast<CFIndex>(file.size()))
                : nullptr;
}

CFPropertyListFormat formatOf(const __CFData& data) {
    return data.count > 0 && data.bytes[0] == 'b' ? kCFPropertyListBinaryFormat_v1_0
                                                  : kCFPropertyListXMLFormat_v1_0;
}

CFTypeRef objectOf(const __CFData& data) {
    const std::unique_ptr<Document> document =
        Document::read({data.bytes, static_cast<std::size_t>(data.count)});
    return document ? document->copy(document->top()) : nullptr;
}

} // namespace

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef propertyList,
                                   CFPropertyListFormat format, CFOptionFlags, CFErrorRef* error) {
    if (error)
        *error = nullptr;
    if (format != kCFPropertyListBinaryFormat_v1_0 || !Cf::isA(propertyList, Cf::Type::Dictionary))
        return nullptr;
    try {
        return dataOf(*static_cast<CFDictionaryRef>(propertyList));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data, CFOptionFlags,
                                               CFPropertyListFormat* format, CFErrorRef* error) {
    if (error)
        *error = nullptr;
    if (!data)
        return nullptr;
    try {
        CFTypeRef object = objectOf(*data);
        if (object && format)
            *format = formatOf(*data);
        return object;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
