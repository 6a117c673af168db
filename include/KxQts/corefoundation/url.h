/// \file
/// File URLs: a path that is known to be one.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef CFIndex CFURLPathStyle;

enum { kCFURLPOSIXPathStyle = 0, kCFURLHFSPathStyle = 1, kCFURLWindowsPathStyle = 2 };

/// The type of URLs, as `CFGetTypeID` gives it.
KXQTS_C_API CFTypeID CFURLGetTypeID(void);

/// Makes a URL of the bytes of a path.
/// \param isDirectory Part of what makes two URLs equal, nothing else.
/// \return Null for an empty path. A relative path is taken from the working folder of now.
KXQTS_C_API CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                             const UInt8* path, CFIndex length,
                                                             Boolean isDirectory);

/// As above, of a string. \return Null for any other style than the POSIX one as well.
KXQTS_C_API CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                                   CFURLPathStyle style, Boolean isDirectory);

/// Writes the path and a zero byte.
/// \param resolveAgainstBase Whether a relative path is made absolute.
/// \param size Bytes that \a buffer has room for, the zero included.
/// \return False when the buffer is too small; it is left alone then.
KXQTS_C_API Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                     UInt8* buffer, CFIndex size);

/// The path as it was given. \return Null for any other style than the POSIX one.
KXQTS_C_API CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
