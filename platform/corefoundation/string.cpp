#include "platform/corefoundation/string.h"

#include "platform/corefoundation/encodings.h"

#include <QHashFunctions>

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

using namespace Korvex::Cf;

namespace Korvex::Cf {

std::uint32_t hashOf(QStringView text) {
    const auto hash = static_cast<std::uint64_t>(qHash(text, QHashSeed::globalSeed()));
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

CFStringRef makeString(QStringView text) {
    const auto count = static_cast<std::size_t>(text.size());
    const std::size_t bytes = count * sizeof(char16_t);
    void* memory = ::operator new(sizeof(__CFString) + bytes + sizeof(char16_t), std::nothrow);
    if (!memory)
        return nullptr;
    auto* characters = reinterpret_cast<char16_t*>(static_cast<char*>(memory) + sizeof(__CFString));
    if (bytes != 0)
        std::memcpy(characters, text.utf16(), bytes);
    characters[count] = 0;
    return new (memory) __CFString(characters, static_cast<CFIndex>(count), true);
}

void freeString(const __CFString* string) {
    delete[] string->bytes.load(std::memory_order_acquire);
    string->~__CFString();
    ::operator delete(const_cast<__CFString*>(string));
}

} // namespace Korvex::Cf

namespace {

/// The 8-bit form of a text, for its object to keep; null for a text that is not the same bytes in
/// every encoding.
char* makeBytes(const QString& text) {
    const std::optional<QByteArray> bytes = encode(text, kCFStringEncodingASCII);
    if (!bytes || bytes->contains('\0'))
        return nullptr;
    const auto size = static_cast<std::size_t>(bytes->size()) + 1;
    char* const made = new (std::nothrow) char[size];
    if (made)
        std::memcpy(made, bytes->constData(), size);
    return made;
}

} // namespace

CFTypeID CFStringGetTypeID(void) {
    return static_cast<CFTypeID>(Type::String);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex count) {
    if (count < 0 || (count > 0 && !characters))
        return nullptr;
    return makeString(QStringView(characters, static_cast<qsizetype>(count)));
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
    return static_cast<CFStringRef>(CFRetain(string));
}

CFIndex CFStringGetLength(CFStringRef string) {
    return string ? string->count : 0;
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    return string && index >= 0 && index < string->count ? string->characters[index] : 0;
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    if (!string || range.location < 0 || range.location >= string->count)
        return;
    const CFIndex count = std::min(range.length, string->count - range.location);
    if (count > 0)
        std::memcpy(buffer, string->characters + range.location,
                    static_cast<std::size_t>(count) * sizeof(UniChar));
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) {
    return string ? reinterpret_cast<const UniChar*>(string->characters) : nullptr;
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
    if (!string || !encode(QString(), encoding))
        return nullptr;
    if (const char* made = string->bytes.load(std::memory_order_acquire))
        return made;
    char* const made = makeBytes(text(string));
    char* others = nullptr;
    if (!string->bytes.compare_exchange_strong(others, made, std::memory_order_acq_rel)) {
        delete[] made; // another thread was faster
        return others;
    }
    return made;
}

CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other, CFOptionFlags) {
    const QStringView a = one ? units(one) : QStringView();
    const QStringView b = other ? units(other) : QStringView();
    const bool less = std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
    if (less)
        return kCFCompareLessThan;
    return a == b ? kCFCompareEqualTo : kCFCompareGreaterThan;
}
