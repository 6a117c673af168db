/// \file
/// Strings: immutable runs of UTF-16 code units. Any unit may occur, zeros and unpaired surrogates
/// included.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef UInt32 CFStringEncoding;

enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100
};

/// The type of strings, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFStringGetTypeID(void);

/// Makes a string of \a count code units.
KXQTS_C_API CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator,
                                                     const UniChar* characters, CFIndex count);

/// Makes a string of 8-bit text that ends with a zero byte.
/// \return Null when the text is not valid in the encoding and for an encoding not listed above.
KXQTS_C_API CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                  CFStringEncoding encoding);

/// Makes a string of \a count bytes of text. \a isExternal is ignored.
/// \return As \ref CFStringCreateWithCString.
KXQTS_C_API CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                                CFIndex count, CFStringEncoding encoding,
                                                Boolean isExternal);

/// \return The string itself, with one more reference: strings never change.
KXQTS_C_API CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);

/// The count of code units.
KXQTS_C_API CFIndex CFStringGetLength(CFStringRef string);

/// One code unit; 0 at a place outside the string.
KXQTS_C_API UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);

/// Copies code units. What of \a range lies outside the string is left out.
KXQTS_C_API void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

/// The code units themselves, never null for a string, valid as long as the string is. A zero
/// follows the last one.
KXQTS_C_API const UniChar* CFStringGetCharactersPtr(CFStringRef string);

/// The text in 8-bit form, valid as long as the string is.
/// \return Null for text that is not all ASCII or holds a zero, which is kept as UTF-16 alone, and
/// for an encoding not listed above.
KXQTS_C_API const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

/// Writes the text in 8-bit form and a zero byte.
/// \param size Bytes that \a buffer has room for, the zero included.
/// \return False, with nothing but a zero byte in \a buffer, when the encoding cannot express the
/// text or the buffer is too small for it.
KXQTS_C_API Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                                       CFStringEncoding encoding);

/// The encoding of the user's locale; Mac Roman for one that is not listed above.
KXQTS_C_API CFStringEncoding CFStringGetSystemEncoding(void);

/// Compares code unit by code unit. \a options are ignored.
KXQTS_C_API CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other,
                                               CFOptionFlags options);
