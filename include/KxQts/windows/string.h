/// \file
/// What `#include <string.h>` finds in a source written for Windows: the C library's header, and
/// what Windows has in it beside.
#pragma once

#pragma GCC system_header // for the next line, which is no standard C
#include_next <string.h>

#include <KxQts/windows/kxcrt.h>
#include <ctype.h>
#include <errno.h>
#include <strings.h>
#include <wchar.h>

#define _strcmpi _stricmp
#define _stricoll _stricmp
#define strnlen_s strnlen

// Sources for several systems have macros of these names for the others: those stay in force.
#ifndef _stricmp
static inline int _stricmp(const char* a, const char* b) {
    return strcasecmp(a, b);
}
#endif
#ifndef _strnicmp
static inline int _strnicmp(const char* a, const char* b, size_t count) {
    return strncasecmp(a, b, count);
}
#endif
#ifndef _strdup
static inline char* _strdup(const char* text) {
    return strdup(text);
}
#endif
#ifndef strtok_s
static inline char* strtok_s(char* text, const char* separators, char** rest) {
    return strtok_r(text, separators, rest);
}
#endif

#ifndef _strlwr
/// Makes a text lower case in place. \return \a text.
static inline char* _strlwr(char* text) {
    for (char* at = text; *at; ++at)
        *at = (char)tolower((unsigned char)*at);
    return text;
}
#endif

#ifndef memmove_s
/// Copies bytes within or between pieces of memory. \return 0; 22 for a null pointer, 34 when they
/// do not fit: nothing is written then.
static inline errno_t memmove_s(void* dst, size_t size, const void* src, size_t count) {
    if (count == 0)
        return 0;
    if (!dst || !src)
        return EINVAL;
    if (count > size)
        return ERANGE;
    memmove(dst, src, count);
    return 0;
}
#endif

#ifndef memcpy_s
/// As \ref memmove_s: memory that overlaps does no harm.
static inline errno_t memcpy_s(void* dst, size_t size, const void* src, size_t count) {
    return memmove_s(dst, size, src, count);
}
#endif
