/// \file
/// Numbers, booleans, data and dates.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef CFIndex CFNumberType;

enum {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14
};

/// The type of numbers, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFNumberGetTypeID(void);

/// Makes a number. \param value What it points to has the type that \a type says.
/// \return Null for an unknown type and for a null \a value.
KXQTS_C_API CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type,
                                       const void* value);

/// Reads a number as the type asked for.
/// \param value Receives the number, rounded towards zero or cut to the low bits where the type
/// cannot hold it.
/// \return Whether \a value holds the number exactly.
KXQTS_C_API Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

/// The smallest of the sized types (the first six) that the number was made as or fits.
KXQTS_C_API CFNumberType CFNumberGetType(CFNumberRef number);

/// Whether the number is a floating-point one.
KXQTS_C_API Boolean CFNumberIsFloatType(CFNumberRef number);

/// The type of truth values, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFBooleanGetTypeID(void);
/// Truth. It is never freed.
KXQTS_C_API const CFBooleanRef kCFBooleanTrue;
/// Its opposite. It is never freed.
KXQTS_C_API const CFBooleanRef kCFBooleanFalse;

/// Whether an object is `kCFBooleanTrue`. There are two objects of this type only.
KXQTS_C_API Boolean CFBooleanGetValue(CFBooleanRef boolean);

/// The type of data objects, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFDataGetTypeID(void);

/// Makes data of \a count bytes, which are copied.
KXQTS_C_API CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count);

/// Makes data over bytes that are not copied.
/// \param bytesDeallocator `kCFAllocatorNull`: the bytes stay the caller's and outlive the object.
/// Any other: they came from `malloc` and are freed with the object.
KXQTS_C_API CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                                  CFIndex count, CFAllocatorRef bytesDeallocator);

/// How many bytes there are.
KXQTS_C_API CFIndex CFDataGetLength(CFDataRef data);

/// The bytes, valid as long as the object is.
KXQTS_C_API const UInt8* CFDataGetBytePtr(CFDataRef data);

/// Copies bytes. What of \a range lies outside the data is left out.
KXQTS_C_API void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer);

/// Seconds since the beginning of 2001, UTC.
typedef double CFAbsoluteTime;

/// The type of dates, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFDateGetTypeID(void);
/// Makes a date.
KXQTS_C_API CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime at);
/// The time of a date.
KXQTS_C_API CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
