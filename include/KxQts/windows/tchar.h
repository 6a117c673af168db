/// \file
/// What `#include <tchar.h>` finds in a source written for Windows: names that stand for the wide
/// form of a call when `_UNICODE` is defined, else for its 8-bit form.
///
/// There are names for calls that exist in both forms, here or in the C library. Wide formats are
/// read as on Windows, see `kxwideformat.h`; 8-bit ones are the C library's. `_stprintf_s` returns
/// what the call behind it does (0 in the 8-bit form, the length in the wide one, which also leaves
/// a text behind that was cut off).
#pragma once

#include <KxQts/windows/kxcrt.h>
#include <KxQts/windows/kxwideformat.h>

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <time.h>
#include <unistd.h>
#include <wchar.h>
#include <wctype.h>

/// \def KXQTS_T(wide, narrow)
/// One of two names.
#ifdef _UNICODE
#define KXQTS_T(wide, narrow) wide
#define KXQTS_T_LITERAL(literal) L##literal
#else
#define KXQTS_T(wide, narrow) narrow
#define KXQTS_T_LITERAL(literal) literal
#endif

typedef KXQTS_T(wchar_t, char) _TCHAR, _TSCHAR, _TXCHAR;
typedef KXQTS_T(wchar_t, unsigned char) _TUCHAR;
typedef KXQTS_T(wint_t, int) _TINT;

// <windows.h>, which follows UNICODE, may have been first.
#ifndef _TCHAR_DEFINED
#define _TCHAR_DEFINED
typedef KXQTS_T(wchar_t, char) TCHAR, *PTCHAR;
#endif

#define __T(literal) KXQTS_T_LITERAL(literal)
#define _T(literal) KXQTS_T_LITERAL(literal)
#define _TEXT(literal) KXQTS_T_LITERAL(literal)
#define _TEOF KXQTS_T(WEOF, EOF)
#define _tmain KXQTS_T(wmain, main)

// Printing and scanning
#define _tprintf KXQTS_T(kx_wprintf, printf)
#define _tprintf_s KXQTS_T(kx_wprintf, printf)
#define _ftprintf KXQTS_T(kx_fwprintf, fprintf)
#define _ftprintf_s KXQTS_T(kx_fwprintf, fprintf)
#define _stprintf KXQTS_T(kx_swprintf_unbounded, sprintf)
#define _stprintf_s KXQTS_T(kx_swprintf, sprintf_s)
#define _sntprintf KXQTS_T(kx_swprintf, _snprintf)
#define _vtprintf KXQTS_T(kx_vwprintf, vprintf)
#define _vftprintf KXQTS_T(kx_vfwprintf, vfprintf)
#define _vstprintf KXQTS_T(kx_vswprintf_unbounded, vsprintf)
#define _vstprintf_s KXQTS_T(kx_vswprintf, vsprintf_s)
#define _vsntprintf KXQTS_T(kx_vswprintf, _vsnprintf)
#define _tscanf KXQTS_T(kx_wscanf, scanf)
#define _ftscanf KXQTS_T(kx_fwscanf, fscanf)
#define _stscanf KXQTS_T(kx_swscanf, sscanf)

// Characters and lines
#define _fgettc KXQTS_T(fgetwc, fgetc)
#define _fgetts KXQTS_T(fgetws, fgets)
#define _fputtc KXQTS_T(kx_fputwc, fputc)
#define _fputts KXQTS_T(kx_fputws, fputs)
#define _putts KXQTS_T(_putws, puts)
#define _gettc KXQTS_T(getwc, getc)
#define _gettchar KXQTS_T(getwchar, getchar)
#define _puttc KXQTS_T(kx_fputwc, putc)
#define _puttchar(character) _puttc(character, stdout)
#define _ungettc KXQTS_T(ungetwc, ungetc)

// Texts
#define _tcslen KXQTS_T(wcslen, strlen)
#define _tcsclen KXQTS_T(wcslen, strlen)
#define _tcsnlen KXQTS_T(wcsnlen, strnlen)
#define _tcscpy KXQTS_T(wcscpy, strcpy)
#define _tcsncpy KXQTS_T(wcsncpy, strncpy)
#define _tcscat KXQTS_T(wcscat, strcat)
#define _tcsncat KXQTS_T(wcsncat, strncat)
#define _tcscpy_s KXQTS_T(wcscpy_s, strcpy_s)
#define _tcsncpy_s KXQTS_T(wcsncpy_s, strncpy_s)
#define _tcscat_s KXQTS_T(wcscat_s, strcat_s)
#define _tcsdup KXQTS_T(wcsdup, strdup)
#define _tcscmp KXQTS_T(wcscmp, strcmp)
#define _tccmp(a, b) _tcsncmp(a, b, 1)
#define _tcsncmp KXQTS_T(wcsncmp, strncmp)
#define _tcsicmp KXQTS_T(_wcsicmp, strcasecmp)
#define _tcsncicmp KXQTS_T(wcsncasecmp, strncasecmp)
#define _tcsnicmp KXQTS_T(wcsncasecmp, strncasecmp)
#define _tcscoll KXQTS_T(wcscoll, strcoll)
#define _tcsxfrm KXQTS_T(wcsxfrm, strxfrm)
#define _tcschr KXQTS_T(wcschr, strchr)
#define _tcsrchr KXQTS_T(wcsrchr, strrchr)
#define _tcsstr KXQTS_T(wcsstr, strstr)
#define _tcspbrk KXQTS_T(wcspbrk, strpbrk)
#define _tcsspn KXQTS_T(wcsspn, strspn)
#define _tcscspn KXQTS_T(wcscspn, strcspn)
#define _tcstok KXQTS_T(kxqts_wcstok, strtok)
#define _tcstok_s KXQTS_T(wcstok, strtok_r)
#define _tcslwr KXQTS_T(_wcslwr, _strlwr)
#define _tcsupr KXQTS_T(_wcsupr, _strupr)
#define _tcsupr_s KXQTS_T(_wcsupr_s, _strupr_s)

/// The character behind and the one in front of a place in a text.
#define _tcsinc(at) ((at) + 1)
#define _tcsdec(text, at) ((at) > (text) ? (at)-1 : NULL)
#define _tcsnextc(at) ((unsigned)*(at))

/// `wcstok` as Windows once had it: each thread's text is kept.
static inline wchar_t* kxqts_wcstok(wchar_t* text, const wchar_t* separators) {
    static __thread wchar_t* rest;
    return wcstok(text, separators, &rest);
}

// Numbers
#define _tstoi(text) ((int)_tcstol(text, NULL, 10))
#define _ttoi(text) _tstoi(text)
#define _tstol(text) _tcstol(text, NULL, 10)
#define _ttol(text) _tstol(text)
#define _ttoi64(text) _tcstoi64(text, NULL, 10)
#define _tstof(text) _tcstod(text, NULL)
#define _tcstol KXQTS_T(wcstol, strtol)
#define _tcstoul KXQTS_T(wcstoul, strtoul)
#define _tcstoi64 KXQTS_T(wcstoll, strtoll)
#define _tcstoui64 KXQTS_T(wcstoull, strtoull)
#define _tcstod KXQTS_T(wcstod, strtod)
#define _itot KXQTS_T(_itow, _itoa)
#define _ltot KXQTS_T(_ltow, _ltoa)
#define _ultot KXQTS_T(_ultow, _ultoa)
#define _itot_s KXQTS_T(_itow_s, _itoa_s)
#define _ltot_s KXQTS_T(_ltow_s, _ltoa_s)
#define _ultot_s KXQTS_T(_ultow_s, _ultoa_s)

// Paths, files and the environment
#define _tsplitpath KXQTS_T(_wsplitpath, _splitpath)
#define _tsplitpath_s KXQTS_T(_wsplitpath_s, _splitpath_s)
#define _tmakepath KXQTS_T(_wmakepath, _makepath)
#define _tmakepath_s KXQTS_T(_wmakepath_s, _makepath_s)
#define _tfopen KXQTS_T(_wfopen, fopen)
#define _tremove KXQTS_T(_wremove, remove)
#define _trename KXQTS_T(_wrename, rename)
#define _trmdir KXQTS_T(_wrmdir, rmdir)
#define _tgetenv KXQTS_T(_wgetenv, getenv)

// Dates and times
#define _tctime KXQTS_T(_wctime, ctime)
#define _tcsftime KXQTS_T(wcsftime, strftime)
#define _tstrdate KXQTS_T(_wstrdate, _strdate)
#define _tstrdate_s KXQTS_T(_wstrdate_s, _strdate_s)
#define _tstrtime KXQTS_T(_wstrtime, _strtime)
#define _tstrtime_s KXQTS_T(_wstrtime_s, _strtime_s)

// Kinds of characters
#define _istascii(character) ((unsigned)(character) < 0x80u)
#define _istalnum KXQTS_T(iswalnum, isalnum)
#define _istalpha KXQTS_T(iswalpha, isalpha)
#define _istcntrl KXQTS_T(iswcntrl, iscntrl)
#define _istdigit KXQTS_T(iswdigit, isdigit)
#define _istgraph KXQTS_T(iswgraph, isgraph)
#define _istlower KXQTS_T(iswlower, islower)
#define _istprint KXQTS_T(iswprint, isprint)
#define _istpunct KXQTS_T(iswpunct, ispunct)
#define _istspace KXQTS_T(iswspace, isspace)
#define _istupper KXQTS_T(iswupper, isupper)
#define _istxdigit KXQTS_T(iswxdigit, isxdigit)
#define _totlower KXQTS_T(towlower, tolower)
#define _totupper KXQTS_T(towupper, toupper)
