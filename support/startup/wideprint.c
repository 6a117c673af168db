#define _POSIX_C_SOURCE 200809L

#include "wideformat.h"
#include "wideoutput.h"

#include <KxQts/windows/kxwideformat.h>

#include <errno.h>
#include <stdlib.h>

int kx_vswprintf(wchar_t* dst, size_t size, const wchar_t* format, va_list arguments) {
    if (!dst || !format || size == 0) {
        errno = EINVAL;
        return -1;
    }
    wchar_t* const cFormat = kxmain_toCFormat(format);
    const int length = cFormat ? vswprintf(dst, size, cFormat, arguments) : -1;
    free(cFormat);
    if (length < 0)
        dst[cFormat ? size - 1 : 0] = 0;
    return length;
}

// The text that a format makes, to be freed; null with errno set on failure.
static wchar_t* formatted(const wchar_t* format, va_list arguments, size_t* length) {
    wchar_t* const cFormat = kxmain_toCFormat(format);
    wchar_t* text = NULL;
    FILE* const memory = cFormat ? open_wmemstream(&text, length) : NULL;
    const int result = memory ? vfwprintf(memory, cFormat, arguments) : -1;
    free(cFormat);
    if (memory && fclose(memory) == 0 && result >= 0)
        return text;
    free(text);
    return NULL;
}

int kx_vswprintf_unbounded(wchar_t* dst, const wchar_t* format, va_list arguments) {
    size_t length = 0;
    wchar_t* const text = formatted(format, arguments, &length);
    if (!text)
        return -1;
    wmemcpy(dst, text, length + 1);
    free(text);
    return (int)length;
}

int kx_vfwprintf(FILE* stream, const wchar_t* format, va_list arguments) {
    size_t length = 0;
    wchar_t* const text = formatted(format, arguments, &length);
    const int result = text && kxmain_write(text, length, stream) ? (int)length : -1;
    free(text);
    return result;
}

int kx_vwprintf(const wchar_t* format, va_list arguments) {
    return kx_vfwprintf(stdout, format, arguments);
}

int kx_wprintf(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = kx_vfwprintf(stdout, format, arguments);
    va_end(arguments);
    return result;
}

int kx_fwprintf(FILE* stream, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = kx_vfwprintf(stream, format, arguments);
    va_end(arguments);
    return result;
}

int kx_swprintf(wchar_t* dst, size_t size, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = kx_vswprintf(dst, size, format, arguments);
    va_end(arguments);
    return result;
}

int kx_swprintf_unbounded(wchar_t* dst, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = kx_vswprintf_unbounded(dst, format, arguments);
    va_end(arguments);
    return result;
}
