#pragma once

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation/scalars.h>

#include <QByteArray>

#include <cstdint>

/// A number: an integer of 128 bits in two halves, or a floating-point one.
struct __CFNumber : Korvex::Cf::Object {
    explicit __CFNumber(CFNumberType asType)
        : Object(Korvex::Cf::Type::Number), numberType(asType) {}

    [[nodiscard]] bool isReal() const {
        return numberType == kCFNumberFloat32Type || numberType == kCFNumberFloat64Type;
    }
    /// Whether the integer fits 64 bits, signed.
    [[nodiscard]] bool fits64() const { return high == (low < 0 ? -1 : 0); }

    const CFNumberType numberType; ///< One of the first six
    std::int64_t low = 0;          ///< The low half's bits
    std::int64_t high = 0;
    double real = 0;
};

struct __CFBoolean : Korvex::Cf::Object {
    explicit constexpr __CFBoolean(bool is) : Object(Korvex::Cf::Type::Boolean, false), value(is) {}

    const bool value;
};

/// Data, and what an archive of objects calls a UID.
struct __CFData : Korvex::Cf::Object {
    __CFData(Korvex::Cf::Type ofType, const UInt8* at, CFIndex length, bool freed)
        : Object(ofType), bytes(at), count(length), freesBytes(freed) {}

    const UInt8* const bytes;
    const CFIndex count;
    const bool freesBytes;
};

struct __CFDate : Korvex::Cf::Object {
    explicit __CFDate(CFAbsoluteTime at) : Object(Korvex::Cf::Type::Date), time(at) {}

    const CFAbsoluteTime time;
};

namespace Korvex::Cf {

[[nodiscard]] CFNumberRef makeInteger(std::int64_t low, std::int64_t high);
/// Data or a UID with bytes of its own.
[[nodiscard]] CFDataRef makeBytes(Type type, const UInt8* bytes, CFIndex count);

[[nodiscard]] bool sameValue(const Object& one, const Object& other);
[[nodiscard]] CFHashCode hashOfValue(const Object& scalar);
void freeScalar(const Object* scalar);
/// Whether a URL is another's equal, and what hash such have.
[[nodiscard]] bool sameUrl(const Object& one, const Object& other);
[[nodiscard]] CFHashCode hashOfUrl(const Object& url);
void freeUrl(const Object* url);

} // namespace Korvex::Cf
