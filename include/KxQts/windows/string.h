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

#define _stricmp strcasecmp
#define _strcmpi strcasecmp
#define _stricoll strcasecmp
#define _strnicmp strncasecmp
#define _strdup strdup
#define _memccpy memccpy
#define strtok_s strtok_r
#define strnlen_s strnlen

/// Makes a text lower case in place. \return \a text.
static inline char* _strlwr(char* text) {
    for (char* at = text; *at; ++at)
        *at = (char)tolower((unsigned char)*at);
    return text;
}

/// Copies bytes. \return 0; 22 for a null pointer, 34 when they do not fit: nothing is written
/// then.
static inline errno_t memcpy_s(void* dst, size_t size, const void* src, size_t count) {
    if (count == 0)
        return 0;
    if (!dst || !src)
        return EINVAL;
    if (count > size)
        return ERANGE;
    memcpy(dst, src, count);
    return 0;
}

/// As \ref memcpy_s, for memory that overlaps.
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
