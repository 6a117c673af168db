#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include <algorithm>
#include <cstdint>

namespace Error = Korvex::Error;

namespace {

constexpr int smallestBase = 2;
constexpr int decimal = 10;
constexpr int largestBase = 36;

struct Number {
    unsigned long magnitude;
    bool negative;
};

/// Only base 10 knows a minus sign. In other bases a negative value is its bit pattern: of 32 bits
/// as long as the value has no more, for a buffer made for Windows, whose `long` is that wide.
Number numberOf(long value, int base) {
    const auto pattern = static_cast<unsigned long>(value);
    if (value >= 0)
        return {pattern, false};
    if (base == decimal)
        return {0UL - pattern, true};
    if (value >= INT32_MIN)
        return {static_cast<uint32_t>(value), false};
    return {pattern, false};
}

Number numberOf(unsigned long value, int) {
    return {value, false};
}

char digit(unsigned long value) {
    return static_cast<char>(value < decimal ? '0' + value : 'a' + (value - decimal));
}

/// Digits come last one first and are turned round at the end. Whether there is room is asked when
/// one has been written: what does not fit leaves its last digits behind.
template <class Char>
bool write(Char* dst, size_t size, Number number, int base) {
    const auto divisor = static_cast<unsigned long>(base);
    size_t length = 0;
    do {
        dst[length++] = static_cast<Char>(digit(number.magnitude % divisor));
        number.magnitude /= divisor;
        if (length >= size)
            return false;
    } while (number.magnitude > 0);
    if (number.negative) {
        dst[length++] = '-';
        if (length >= size)
            return false;
    }
    dst[length] = Char();
    std::reverse(dst, dst + length);
    return true;
}

template <class Char, class Value>
Char* toText(Value value, Char* dst, int base) {
    write(dst, SIZE_MAX, numberOf(value, base), base);
    return dst;
}

template <class Char, class Value>
errno_t toTextChecked(Value value, Char* dst, size_t size, int base) {
    if (!dst || size < 1 || base < smallestBase || base > largestBase)
        return Error::InvalidArgument;
    return write(dst, size, numberOf(value, base), base) ? Error::None : Error::InvalidArgument;
}

} // namespace

char* _itoa(int value, char* dst, int base) {
    return toText<char, long>(value, dst, base);
}

char* _ltoa(long value, char* dst, int base) {
    return toText(value, dst, base);
}

char* _ultoa(unsigned long value, char* dst, int base) {
    return toText(value, dst, base);
}

wchar_t* _itow(int value, wchar_t* dst, int base) {
    return toText<wchar_t, long>(value, dst, base);
}

wchar_t* _ltow(long value, wchar_t* dst, int base) {
    return toText(value, dst, base);
}

wchar_t* _ultow(unsigned long value, wchar_t* dst, int base) {
    return toText(value, dst, base);
}

errno_t _itoa_s(int value, char* dst, size_t size, int base) {
    return toTextChecked<char, long>(value, dst, size, base);
}

errno_t _ltoa_s(long value, char* dst, size_t size, int base) {
    return toTextChecked(value, dst, size, base);
}

errno_t _ultoa_s(unsigned long value, char* dst, size_t size, int base) {
    return toTextChecked(value, dst, size, base);
}

errno_t _itow_s(int value, wchar_t* dst, size_t size, int base) {
    return toTextChecked<wchar_t, long>(value, dst, size, base);
}

errno_t _ltow_s(long value, wchar_t* dst, size_t size, int base) {
    return toTextChecked(value, dst, size, base);
}

errno_t _ultow_s(unsigned long value, wchar_t* dst, size_t size, int base) {
    return toTextChecked(value, dst, size, base);
}
