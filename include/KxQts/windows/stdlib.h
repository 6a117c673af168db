/// \file
/// What `#include <stdlib.h>` finds in a source written for Windows: the C library's header, and
/// what Windows has in it beside.
#pragma once

#pragma GCC system_header // for the next line, which is no standard C
#include_next <stdlib.h>

#include <KxQts/windows/kxcrt.h>
#include <errno.h>
#include <string.h>
#include <wchar.h>

#define _atoi64 atoll
#define _strtoi64 strtoll
#define _strtoui64 strtoull

#ifndef __min
#define __min(a, b) ((a) < (b) ? (a) : (b))
#endif
#ifndef __max
#define __max(a, b) ((a) > (b) ? (a) : (b))
#endif

// Sources for several systems have macros of these names for the others: those stay in force.
#ifndef _putenv_s
/// Sets an environment variable, or removes it with an empty value.
/// \return 0, or `errno` as left by `setenv`.
static inline errno_t _putenv_s(const char* name, const char* value) {
    if (!name || !value)
        return EINVAL;
    return (*value ? setenv(name, value, 1) : unsetenv(name)) == 0 ? 0 : errno;
}
#endif

#ifndef getenv_s
/// Copies an environment variable.
/// \param length Receives its length with the terminator, 0 when there is none. \return 0; 22 for a
/// null pointer; 34 when it does not fit.
static inline errno_t getenv_s(size_t* length, char* dst, size_t size, const char* name) {
    const char* value = name ? getenv(name) : NULL;
    if (!length || !name || (!dst && size != 0))
        return EINVAL;
    *length = value ? strlen(value) + 1 : 0;
    if (*length > size)
        return size == 0 ? 0 : ERANGE;
    if (size != 0)
        strcpy(dst, value ? value : "");
    return 0;
}
#endif

#ifndef _dupenv_s
/// Copies an environment variable into memory of its own, which the caller frees.
/// \param text Receives null when there is none. \param length As for \ref getenv_s; may be null.
/// \return 0; 22 for a null pointer; 12 without memory.
static inline errno_t _dupenv_s(char** text, size_t* length, const char* name) {
    const char* value = name ? getenv(name) : NULL;
    if (!text || !name)
        return EINVAL;
    *text = value ? strdup(value) : NULL;
    if (length)
        *length = *text ? strlen(*text) + 1 : 0;
    return value && !*text ? ENOMEM : 0;
}
#endif
