/// \file
/// What `#include <winnt.h>` finds in a source written for Windows: the text types that follow
/// `UNICODE`.
#pragma once

#include <KxQts/windows/windef.h>

#define ARRAYSIZE(array) (sizeof(array) / sizeof((array)[0]))
#define UNREFERENCED_PARAMETER(parameter) ((void)(parameter))

#ifdef UNICODE
#define KXQTS_TEXT(literal) L##literal
typedef LPWSTR LPTSTR, PTSTR;
typedef LPCWSTR LPCTSTR, PCTSTR;
#else
#define KXQTS_TEXT(literal) literal
typedef LPSTR LPTSTR, PTSTR;
typedef LPCSTR LPCTSTR, PCTSTR;
#endif

/// A literal of the text type that the program is built for.
#define TEXT(literal) KXQTS_TEXT(literal)

// <tchar.h>, which follows _UNICODE, may have been first.
#ifndef _TCHAR_DEFINED
#define _TCHAR_DEFINED
#ifdef UNICODE
typedef wchar_t TCHAR, *PTCHAR;
#else
typedef char TCHAR, *PTCHAR;
#endif
#endif
