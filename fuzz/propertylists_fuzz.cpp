// Property lists from anywhere: whatever the bytes are, reading ends, and what was read can be
// walked, changed, written and read again.

#include "common/require.h"
#include "platform/corefoundation/object.h"
#include "platform/propertylist/document.h"

#include <KxQts/corefoundation.h>

#include <cstdint>
#include <memory>

using Korvex::Cf::Owned;
using Korvex::PropertyList::Bytes;
using Korvex::PropertyList::ByteView;
using Korvex::PropertyList::Document;
using Korvex::PropertyList::Limits;
using KxFuzz::require;

namespace {

Bytes written(Document& document) {
    Bytes file;
    require(document.write([&](ByteView head, ByteView tail) {
        file.assign(head.begin(), head.end());
        file.insert(file.end(), tail.begin(), tail.end());
        return true;
    }));
    return file;
}

/// Has what was read written and read again, which must give the same.
void checkRoundTrip(Document& document, const Limits& limits) {
    const Owned<CFTypeRef> before(document.copy(document.top()));
    const std::unique_ptr<Document> again = Document::read(written(document), limits);
    require(again != nullptr);
    const Owned<CFTypeRef> after(again->copy(again->top()));
    require(CFEqual(before.get(), after.get()) != 0);
}

Owned<CFTypeRef> readBack(CFDataRef bytes) {
    CFPropertyListFormat format = 0;
    Owned<CFTypeRef> object(CFPropertyListCreateWithData(nullptr, bytes, 0, &format, nullptr));
    require(object && (format == kCFPropertyListBinaryFormat_v1_0 ||
                       format == kCFPropertyListXMLFormat_v1_0));
    return object;
}

/// The calls that programs read and write bytes with agree with the document.
void checkCalls(const Document& document, ByteView file) {
    const Owned<CFTypeRef> contents(document.copy(document.top()));
    const Owned<CFDataRef> bytes(
        CFDataCreate(nullptr, file.data(), static_cast<CFIndex>(file.size())));
    const Owned<CFTypeRef> read = readBack(bytes.get());
    require(CFEqual(read.get(), contents.get()) != 0);
    const auto format = kCFPropertyListBinaryFormat_v1_0;
    const Owned<CFDataRef> again(CFPropertyListCreateData(nullptr, read.get(), format, 0, nullptr));
    require(again && CFEqual(readBack(again.get()).get(), contents.get()) != 0);
}

void change(Document& document) {
    for (std::size_t i = document.count(document.top()); i-- > 0;) {
        const auto entry = document.entry(document.top(), i);
        const Owned<CFTypeRef> value(document.copy(entry.value));
        if (i % 2 == 0)
            document.remove(document.top(), entry.name);
        else
            require(document.set(document.top(), entry.name, value.get()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Limits limits;
    limits.entries = 10000; // so that one input takes no time worth mentioning
    const std::unique_ptr<Document> document = Document::read({data, size}, limits);
    if (!document)
        return 0;
    checkCalls(*document, {data, size});
    checkRoundTrip(*document, limits);
    change(*document);
    checkRoundTrip(*document, limits);
    return 0;
}
