/// \file
/// What `#include <winnt.h>` finds in a source written for Windows: the text types that follow
/// `UNICODE`.
#pragma once

#include <KxQts/windows/windef.h>

#define ARRAYSIZE(array) (sizeof(array) / sizeof((array)[0]))
#define RTL_NUMBER_OF(array) ARRAYSIZE(array)
#define UNREFERENCED_PARAMETER(parameter) ((void)(parameter))
#define UNREFERENCED_LOCAL_VARIABLE(variable) ((void)(variable))
#define DBG_UNREFERENCED_PARAMETER(parameter) ((void)(parameter))
#define DBG_UNREFERENCED_LOCAL_VARIABLE(variable) ((void)(variable))
#define FIELD_OFFSET(type, field) ((LONG)offsetof(type, field))
#define CONTAINING_RECORD(address, type, field)                                                    \
    ((type*)(void*)((char*)(address)-offsetof(type, field)))
/// Refuses to compile when the condition does not hold.
#ifdef __cplusplus
#define C_ASSERT(condition) static_assert(condition, #condition)
#else
#define C_ASSERT(condition) extern char kxqts_c_assert[(condition) ? 1 : -1]
#endif
#define DECLARE_HANDLE(name) typedef struct name##__* name

// For the switch in a `DllMain`, which nobody calls here.
#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

#define MAXCHAR 0x7F
#define MAXSHORT 0x7FFF
#define MAXLONG 0x7FFFFFFF
#define MAXBYTE 0xFF
#define MAXWORD 0xFFFF
#define MAXDWORD 0xFFFFFFFFu
#define MINSHORT (-0x7FFF - 1)
#define MINLONG (-0x7FFFFFFF - 1)

// Languages, for the calls that take one and ignore it
#define LANG_NEUTRAL 0x00
#define LANG_INVARIANT 0x7F
#define LANG_ENGLISH 0x09
#define LANG_FRENCH 0x0C
#define LANG_GERMAN 0x07
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_SYS_DEFAULT 0x02
#define SUBLANG_ENGLISH_US 0x01
#define SUBLANG_ENGLISH_UK 0x02
#define SORT_DEFAULT 0x0
#define MAKELANGID(primary, sub) ((WORD)(((WORD)(sub) << 10) | (WORD)(primary)))
#define PRIMARYLANGID(language) ((WORD)((WORD)(language)&0x3FF))
#define SUBLANGID(language) ((WORD)((WORD)(language) >> 10))
#define MAKELCID(language, sort) (((DWORD)(WORD)(sort) << 16) | (DWORD)(WORD)(language))
#define LANGIDFROMLCID(locale) ((WORD)(locale))

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

#ifdef UNICODE
typedef wchar_t TBYTE, *PTBYTE;
#else
typedef unsigned char TBYTE, *PTBYTE;
#endif
