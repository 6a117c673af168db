#include "platform/corefoundation/scalars.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <new>

using namespace Korvex::Cf;

namespace {

/// The sized type behind a type that is named for the C type.
CFNumberType sized(CFNumberType type) {
    static_assert(sizeof(long) == sizeof(CFIndex));
    switch (type) {
    case kCFNumberCharType:
        return kCFNumberSInt8Type;
    case kCFNumberShortType:
        return kCFNumberSInt16Type;
    case kCFNumberIntType:
        return kCFNumberSInt32Type;
    case kCFNumberLongType:
    case kCFNumberCFIndexType:
        return sizeof(long) == sizeof(std::int64_t) ? kCFNumberSInt64Type : kCFNumberSInt32Type;
    case kCFNumberLongLongType:
        return kCFNumberSInt64Type;
    case kCFNumberFloatType:
        return kCFNumberFloat32Type;
    case kCFNumberDoubleType:
        return kCFNumberFloat64Type;
    default:
        return type;
    }
}

template <class T>
T load(const void* value) {
    T loaded;
    std::memcpy(&loaded, value, sizeof loaded);
    return loaded;
}

bool loadInto(__CFNumber& number, const void* value) {
    switch (number.numberType) {
    case kCFNumberSInt8Type:
        number.low = std::int64_t{load<std::int8_t>(value)}; // with its sign
        break;
    case kCFNumberSInt16Type:
        number.low = load<std::int16_t>(value);
        break;
    case kCFNumberSInt32Type:
        number.low = load<std::int32_t>(value);
        break;
    case kCFNumberSInt64Type:
        number.low = load<std::int64_t>(value);
        break;
    case kCFNumberFloat32Type:
        number.real = static_cast<double>(load<float>(value));
        break;
    case kCFNumberFloat64Type:
        number.real = load<double>(value);
        break;
    default:
        return false;
    }
    number.high = number.low < 0 ? -1 : 0;
    return true;
}

double asReal(const __CFNumber& number) {
    constexpr double halfRange = 18446744073709551616.0; // 2^64
    if (number.isReal())
        return number.real;
    if (number.fits64())
        return static_cast<double>(number.low);
    return static_cast<double>(number.high) * halfRange +
           static_cast<double>(static_cast<std::uint64_t>(number.low));
}

/// A number rounded towards zero, and whether 64 bits hold it exactly.
struct Rounded {
    std::int64_t value;
    bool exact;
};

Rounded rounded(const __CFNumber& number) {
    if (!number.isReal())
        return {number.low, number.fits64()};
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(number.real))
        return {0, false};
    if (number.real >= limit)
        return {std::numeric_limits<std::int64_t>::max(), false};
    if (number.real < -limit)
        return {std::numeric_limits<std::int64_t>::min(), false};
    const auto value = static_cast<std::int64_t>(number.real);
    return {value, static_cast<double>(value) == number.real};
}

template <class T>
Boolean storeInteger(const __CFNumber& number, void* value) {
    const Rounded whole = rounded(number);
    const auto stored = static_cast<T>(whole.value);
    std::memcpy(value, &stored, sizeof stored);
    return whole.exact && stored == whole.value ? 1 : 0;
}

/// A number with the digits that memory has room for: registers of some processors hold more.
template <class T>
T asMemoryHolds(T value) {
    const volatile T held = value;
    return held;
}

template <class T>
Boolean storeReal(const __CFNumber& number, void* value) {
    const double real = asMemoryHolds(asReal(number));
    const auto stored = asMemoryHolds(static_cast<T>(real));
    std::memcpy(value, &stored, sizeof stored);
    if (std::isnan(real))
        return 1;
    if (!number.isReal() && rounded(number).exact) {
        __CFNumber back(kCFNumberFloat64Type);
        back.real = static_cast<double>(stored);
        const Rounded whole = rounded(back);
        return whole.exact && whole.value == number.low ? 1 : 0;
    }
    return static_cast<double>(stored) == real ? 1 : 0;
}

} // namespace

namespace Korvex::Cf {

CFNumberRef makeInteger(std::int64_t low, std::int64_t high) {
    auto* number = new (std::nothrow) __CFNumber(kCFNumberSInt64Type);
    if (number) {
        number->low = low;
        number->high = high;
    }
    return number;
}

} // namespace Korvex::Cf

CFTypeID CFNumberGetTypeID(void) {
    return static_cast<CFTypeID>(Type::Number);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    auto* number = value ? new (std::nothrow) __CFNumber(sized(type)) : nullptr;
    if (number && !loadInto(*number, value)) {
        delete number;
        return nullptr;
    }
    return number;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    if (!number || !value)
        return 0;
    switch (sized(type)) {
    case kCFNumberSInt8Type:
        return storeInteger<std::int8_t>(*number, value);
    case kCFNumberSInt16Type:
        return storeInteger<std::int16_t>(*number, value);
    case kCFNumberSInt32Type:
        return storeInteger<std::int32_t>(*number, value);
    case kCFNumberSInt64Type:
        return storeInteger<std::int64_t>(*number, value);
    case kCFNumberFloat32Type:
        return storeReal<float>(*number, value);
    case kCFNumberFloat64Type:
        return storeReal<double>(*number, value);
    default:
        return 0;
    }
}

CFNumberType CFNumberGetType(CFNumberRef number) {
    return number ? number->numberType : CFNumberType(kCFNumberSInt8Type);
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return number && number->isReal() ? 1 : 0;
}
