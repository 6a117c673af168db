#include "wideformat.h"

#include <KxQts/windows/kxwideformat.h>

#include <stdlib.h>

static int scanStream(FILE* stream, const wchar_t* format, va_list arguments) {
    wchar_t* const cFormat = kxmain_toCFormat(format);
    const int count = cFormat ? vfwscanf(stream, cFormat, arguments) : EOF;
    free(cFormat);
    return count;
}

int kx_wscanf(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int count = scanStream(stdin, format, arguments);
    va_end(arguments);
    return count;
}

int kx_fwscanf(FILE* stream, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int count = scanStream(stream, format, arguments);
    va_end(arguments);
    return count;
}

int kx_swscanf(const wchar_t* text, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    wchar_t* const cFormat = kxmain_toCFormat(format);
    const int count = cFormat ? vswscanf(text, cFormat, arguments) : EOF;
    free(cFormat);
    va_end(arguments);
    return count;
}
