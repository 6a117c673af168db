/// \file
/// What `#include <wchar.h>` finds in a source written for Windows: the C library's header, and
/// what Windows has in it beside.
///
/// The printing and scanning calls that only Windows has read formats as they are written there,
/// see `kxwideformat.h`. `wprintf` and its kin are the C library's own.
#pragma once

#pragma GCC system_header // for the next line, which is no standard C
#include_next <wchar.h>

#include <KxQts/windows/kxcrt.h>
#include <KxQts/windows/kxwideformat.h>

#include <wctype.h>

#define _wcsdup wcsdup
#define _wcsnicmp wcsncasecmp
#define _wcsicoll wcscasecmp
#define wcstok_s wcstok
#define wcsnlen_s wcsnlen
#define _wcstoi64 wcstoll
#define _wcstoui64 wcstoull

#define wprintf_s kx_wprintf
#define fwprintf_s kx_fwprintf
#define vwprintf_s kx_vwprintf
#define vfwprintf_s kx_vfwprintf
#define swprintf_s kx_swprintf
#define vswprintf_s kx_vswprintf
#define _snwprintf kx_swprintf
#define _vsnwprintf kx_vswprintf

#define _wtoi(text) ((int)wcstol(text, NULL, 10))
#define _wtol(text) wcstol(text, NULL, 10)
#define _wtoi64(text) wcstoll(text, NULL, 10)
#define _wtof(text) wcstod(text, NULL)

/// Makes a text lower case in place. \return \a text.
static inline wchar_t* _wcslwr(wchar_t* text) {
    for (wchar_t* at = text; *at; ++at)
        *at = (wchar_t)towlower((wint_t)*at);
    return text;
}
