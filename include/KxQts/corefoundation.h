/// \file
/// Property-list objects: what `Korvex::WPrefs` hands out and takes.
///
/// These are the published types, functions and constants under their published names, as far as
/// the library and its clients need them. They can be used from C and C++ and need no Qt.
///
/// \par Ownership
/// Objects are counted. A function with `Create` or `Copy` in its name returns an object that the
/// caller owns and gives up with \ref CFRelease; what any other function returns belongs to the
/// object it was asked of. Counts change atomically, and an object that nobody changes may be used
/// by any number of threads. Arrays and dictionaries that are being changed belong to one thread.
/// \par Memory
/// Allocator arguments are ignored, save for `kCFAllocatorNull` as the deallocator of bytes that
/// stay the caller's. Functions that return an object return null when there is no memory.
/// \par Nesting
/// Nothing here calls itself for each level: containers may be nested as deep as memory reaches
/// also on a small stack.
#pragma once

#include <KxQts/corefoundation/array.h>
#include <KxQts/corefoundation/base.h>
#include <KxQts/corefoundation/dictionary.h>
#include <KxQts/corefoundation/preferences.h>
#include <KxQts/corefoundation/propertylist.h>
#include <KxQts/corefoundation/scalars.h>
#include <KxQts/corefoundation/string.h>
#include <KxQts/corefoundation/url.h>
