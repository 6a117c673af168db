/// \file
/// Printing and scanning in wide text as Windows knows it, for the names that only Windows has
/// (`_tprintf` in a program of wide text, `swprintf_s`). They are in the library that a program's
/// start comes from (`-lkxmain`), not in `libKxQts.so`.
///
/// In a format `%s` and `%c` are wide, `%hs`, `%hc`, `%S` and `%C` 8-bit, `%ls` and `%ws` wide; the
/// sizes `I64`, `I32` and `I` are known. Everything else is the C library's: `%ld` takes a `long`,
/// which may have 64 bits.
///
/// What is printed does not decide whether a stream is for wide or for 8-bit text, so that these
/// calls may be mixed with `printf` and `wprintf` alike. As long as nothing else has been written
/// to a stream it goes out at once. Characters that the program's locale lacks are written as the
/// user's locale has them, and as question marks where that has none for them either.
#pragma once

#include <KxQts/export.h>

#include <stdarg.h>
#include <stdio.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Prints to standard output. \return The count of characters, negative on failure; so all of
/// these.
int kx_wprintf(const wchar_t* format, ...);
/// Prints to a stream.
int kx_fwprintf(FILE* stream, const wchar_t* format, ...);
/// Prints to standard output.
int kx_vwprintf(const wchar_t* format, va_list arguments);
/// Prints to a stream.
int kx_vfwprintf(FILE* stream, const wchar_t* format, va_list arguments);

/// Prints into a buffer. A text that does not fit is cut off, and the result is negative.
int kx_swprintf(wchar_t* dst, size_t size, const wchar_t* format, ...);
/// \copydoc kx_swprintf
int kx_vswprintf(wchar_t* dst, size_t size, const wchar_t* format, va_list arguments);
/// Prints into a buffer that has the room.
int kx_swprintf_unbounded(wchar_t* dst, const wchar_t* format, ...);
/// \copydoc kx_swprintf_unbounded
int kx_vswprintf_unbounded(wchar_t* dst, const wchar_t* format, va_list arguments);

/// Writes a text to a stream. \return Not negative; negative on failure.
int kx_fputws(const wchar_t* text, FILE* stream);
/// Writes a line to standard output. \return Not negative; negative on failure.
static inline int _putws(const wchar_t* text) {
    return kx_wprintf(L"%s\n", text) < 0 ? -1 : 0;
}
/// Writes a character to a stream. \return The character; `WEOF` on failure.
wint_t kx_fputwc(wchar_t character, FILE* stream);

/// Scans standard input. \return The count of values that were stored; so all of these.
int kx_wscanf(const wchar_t* format, ...);
/// Scans a stream.
int kx_fwscanf(FILE* stream, const wchar_t* format, ...);
/// Scans a text.
int kx_swscanf(const wchar_t* text, const wchar_t* format, ...);

#ifdef __cplusplus
}

extern "C++" template <size_t Size, typename... Arguments>
inline int kx_swprintf(wchar_t (&dst)[Size], const wchar_t* format, Arguments... arguments) {
    return kx_swprintf(dst, Size, format, arguments...);
}
#endif
