/// \file
/// What `#include <stdio.h>` finds in a source written for Windows: the C library's header, and
/// what Windows has in it beside.
#pragma once

#pragma GCC system_header // for the next line, which is no standard C
#include_next <stdio.h>

#include <KxQts/winapi/widestream.h>
#include <KxQts/windows/kxcrt.h>
#include <errno.h>
#include <stdarg.h>

#define printf_s printf
#define fprintf_s fprintf
#define vprintf_s vprintf
#define vfprintf_s vfprintf
#define _scprintf(...) snprintf(NULL, 0, __VA_ARGS__)
#define _vscprintf(format, arguments) vsnprintf(NULL, 0, format, arguments)

// Sources for several systems have macros of these names for the others: those stay in force.
#ifndef _fileno
static inline int _fileno(FILE* stream) {
    return fileno(stream);
}
#endif
#ifndef _popen
static inline FILE* _popen(const char* command, const char* mode) {
    return popen(command, mode);
}
#endif
#ifndef _pclose
static inline int _pclose(FILE* stream) {
    return pclose(stream);
}
#endif
#ifndef _fseeki64
static inline int _fseeki64(FILE* stream, long long distance, int from) {
    return fseeko(stream, (off_t)distance, from);
}
#endif
#ifndef _ftelli64
static inline long long _ftelli64(FILE* stream) {
    return ftello(stream);
}
#endif

#ifndef _vsnprintf
/// As `vsnprintf`, save that a text that does not fit is −1. What fits is there, and the
/// terminator.
static inline int _vsnprintf(char* dst, size_t size, const char* format, va_list arguments) {
    const int length = vsnprintf(dst, size, format, arguments);
    return length >= 0 && (size_t)length < size ? length : -1;
}
#endif

#ifndef _snprintf
/// As \ref _vsnprintf.
KXQTS_PRINTF(3, 4)
static inline int _snprintf(char* dst, size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnprintf(dst, size, format, arguments);
    va_end(arguments);
    return length;
}
#endif

#ifndef _vsnprintf_s
/// Prints at most \a count characters and a terminator.
/// \return The length. −1 for a text that is longer: it is cut off when \a count is less than
/// \a size, or `_TRUNCATE`; else there is none, and `errno` is 34. −1 with `errno` 22 for a null
/// pointer and a size of 0.
static inline int _vsnprintf_s(char* dst, size_t size, size_t count, const char* format,
                               va_list arguments) {
    if (!dst || !format || size == 0) {
        errno = EINVAL;
        return -1;
    }
    const int length = _vsnprintf(dst, count < size ? count + 1 : size, format, arguments);
    if (length < 0 && count >= size && count != _TRUNCATE) {
        *dst = 0;
        errno = ERANGE;
    }
    return length;
}
#endif

#ifndef vsprintf_s
/// Prints into a buffer. \return The length; −1 when it does not fit, with `errno` 34 and no text.
static inline int vsprintf_s(char* dst, size_t size, const char* format, va_list arguments) {
    return _vsnprintf_s(dst, size, size, format, arguments);
}
#endif

#ifndef fopen_s
/// Opens a file. \return 0; 22 for a null pointer; else as left by `fopen`.
static inline errno_t fopen_s(FILE** stream, const char* path, const char* mode) {
    if (!stream)
        return EINVAL;
    *stream = path && mode ? fopen(path, mode) : NULL;
    return *stream ? 0 : path && mode ? errno : EINVAL;
}
#endif
