#include "platform/corefoundation/scalars.h"

#include <QHashFunctions>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>

using namespace Korvex::Cf;

namespace {

constinit __CFBoolean trueObject(true);
constinit __CFBoolean falseObject(false);

const __CFNumber& number(const Object& object) {
    return static_cast<const __CFNumber&>(object);
}

const __CFData& data(const Object& object) {
    return static_cast<const __CFData&>(object);
}

const __CFDate& date(const Object& object) {
    return static_cast<const __CFDate&>(object);
}

bool sameReal(double one, double other) {
    return one == other || (std::isnan(one) && std::isnan(other));
}

/// Whether an integer and a floating-point number are the same number.
bool sameMixed(const __CFNumber& integer, const __CFNumber& real) {
    std::int64_t value = 0;
    return integer.fits64() && CFNumberGetValue(&real, kCFNumberSInt64Type, &value) &&
           value == integer.low;
}

bool sameNumber(const __CFNumber& one, const __CFNumber& other) {
    if (one.isReal() != other.isReal())
        return one.isReal() ? sameMixed(other, one) : sameMixed(one, other);
    return one.isReal() ? sameReal(one.real, other.real)
                        : one.low == other.low && one.high == other.high;
}

bool sameBytes(const __CFData& one, const __CFData& other) {
    return one.count == other.count && std::equal(one.bytes, one.bytes + one.count, other.bytes);
}

CFHashCode hashOfNumber(const __CFNumber& number) {
    // Equal numbers are equal as integers, whatever they were made as.
    std::int64_t value = 0;
    CFNumberGetValue(&number, kCFNumberSInt64Type, &value);
    return static_cast<CFHashCode>(value) * 2654435761U;
}

} // namespace

constinit const CFBooleanRef kCFBooleanTrue = &trueObject;
constinit const CFBooleanRef kCFBooleanFalse = &falseObject;

namespace Korvex::Cf {

CFDataRef makeBytes(Type type, const UInt8* bytes, CFIndex count) {
    const auto size = static_cast<std::size_t>(count);
    void* memory = ::operator new(sizeof(__CFData) + size, std::nothrow);
    if (!memory)
        return nullptr;
    auto* copy = static_cast<UInt8*>(memory) + sizeof(__CFData);
    if (size != 0)
        std::memcpy(copy, bytes, size);
    return new (memory) __CFData(type, copy, count, false);
}

bool sameValue(const Object& one, const Object& other) {
    switch (one.type) {
    case Type::Number:
        return sameNumber(number(one), number(other));
    case Type::Data:
    case Type::Uid:
        return sameBytes(data(one), data(other));
    case Type::Date:
        return sameReal(date(one).time, date(other).time);
    case Type::Url:
        return sameUrl(one, other);
    default:
        return false; // there is one object of each value
    }
}

CFHashCode hashOfValue(const Object& scalar) {
    switch (scalar.type) {
    case Type::Number:
        return hashOfNumber(number(scalar));
    case Type::Data:
    case Type::Uid:
        return static_cast<CFHashCode>(
            qHashBits(data(scalar).bytes, static_cast<std::size_t>(data(scalar).count)));
    case Type::Date:
        return static_cast<CFHashCode>(std::hash<double>{}(date(scalar).time));
    case Type::Url:
        return hashOfUrl(scalar);
    default:
        return static_cast<CFHashCode>(std::hash<const Object*>{}(&scalar));
    }
}

void freeScalar(const Object* scalar) {
    switch (scalar->type) {
    case Type::Number:
        delete static_cast<const __CFNumber*>(scalar);
        break;
    case Type::Date:
        delete static_cast<const __CFDate*>(scalar);
        break;
    case Type::Url:
        freeUrl(scalar);
        break;
    default:
        if (data(*scalar).freesBytes)
            std::free(const_cast<UInt8*>(data(*scalar).bytes));
        ::operator delete(const_cast<Object*>(scalar));
    }
}

} // namespace Korvex::Cf

CFTypeID CFBooleanGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Boolean);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return boolean && boolean->value ? 1 : 0;
}

CFTypeID CFDataGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Data);
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex count) {
    return count < 0 || (count > 0 && !bytes) ? nullptr : makeBytes(Type::Data, bytes, count);
}

CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                      CFAllocatorRef bytesDeallocator) {
    if (count < 0 || (count > 0 && !bytes))
        return nullptr;
    void* memory = ::operator new(sizeof(__CFData), std::nothrow);
    const bool freed = bytesDeallocator != kCFAllocatorNull;
    return memory ? new (memory) __CFData(Type::Data, bytes, count, freed) : nullptr;
}

CFIndex CFDataGetLength(CFDataRef data) {
    return data ? data->count : 0;
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return data ? data->bytes : nullptr;
}

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer) {
    if (!data || range.location < 0 || range.location >= data->count)
        return;
    const CFIndex count = std::min(range.length, data->count - range.location);
    if (count > 0)
        std::memcpy(buffer, data->bytes + range.location, static_cast<std::size_t>(count));
}

CFTypeID CFDateGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Date);
}

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at) {
    return new (std::nothrow) __CFDate(at);
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) {
    return date ? date->time : 0;
}
