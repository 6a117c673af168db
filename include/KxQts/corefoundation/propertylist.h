/// \file
/// Property lists as bytes: what files of preference domains hold.
#pragma once

#include <KxQts/corefoundation/base.h>

typedef CFIndex CFPropertyListFormat;
typedef struct __CFError* CFErrorRef;

enum { kCFPropertyListXMLFormat_v1_0 = 100, kCFPropertyListBinaryFormat_v1_0 = 200 };

/// Makes the bytes of a property list.
/// \param propertyList A dictionary.
/// \param format `kCFPropertyListBinaryFormat_v1_0`; XML is read only.
/// \param options Ignored.
/// \param error Receives null; may be null.
/// \return Null for any other format, what is no dictionary, and what is no property list or more
/// than could be read again.
KXQTS_C_API CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator,
                                               CFPropertyListRef propertyList,
                                               CFPropertyListFormat format, CFOptionFlags options,
                                               CFErrorRef* error);

/// Reads the bytes of a property list in either format.
/// \param options Ignored: the objects never change.
/// \param format Receives the format of the bytes; may be null.
/// \param error Receives null; may be null.
/// \return A dictionary; null when the bytes are damaged or hold anything else.
KXQTS_C_API CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                                           CFOptionFlags options,
                                                           CFPropertyListFormat* format,
                                                           CFErrorRef* error);
