/// \file
/// The scalar, string and handle types of the Windows programming interface, for C99 and C++.
///
/// Sizes are those of Windows whatever the width of a pointer: `DWORD` and `LONG` have 32 bits. One
/// type differs: `WCHAR` is `wchar_t`, which has 32 bits here, so a wide string holds one UTF-32
/// code unit a character and ends with a 32-bit zero.
#pragma once

#include <stddef.h>
#include <stdint.h>

#if __SIZEOF_WCHAR_T__ != 4
#error "KxQts needs a wchar_t of 32 bits: build without -fshort-wchar"
#endif

typedef int32_t BOOL; ///< `TRUE` or `FALSE`
typedef uint8_t BOOLEAN;
typedef uint8_t BYTE;
typedef uint8_t UCHAR;
typedef char CHAR;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef uint16_t WORD;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef float FLOAT;
typedef double DOUBLE;
typedef int8_t INT8;
typedef uint8_t UINT8;
typedef int16_t INT16;
typedef uint16_t UINT16;
typedef int32_t INT32;
typedef uint32_t UINT32;
typedef int32_t LONG32;
typedef uint32_t ULONG32;
typedef uint32_t DWORD32;
typedef long long LONGLONG;
typedef unsigned long long ULONGLONG;
typedef unsigned long long DWORDLONG;
typedef long long INT64;
typedef unsigned long long UINT64;
typedef long long LONG64;
typedef unsigned long long ULONG64;
typedef unsigned long long DWORD64;
typedef wchar_t WCHAR; ///< One UTF-32 code unit

/// Integers as wide as a pointer.
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef size_t SIZE_T;
typedef ptrdiff_t SSIZE_T;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;

typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BOOL* PBOOL;
typedef BOOL* LPBOOL;
typedef BYTE* PBYTE;
typedef BYTE* LPBYTE;
typedef const BYTE* LPCBYTE;
typedef UCHAR* PUCHAR;
typedef CHAR* PCHAR;
typedef SHORT* PSHORT;
typedef USHORT* PUSHORT;
typedef WORD* PWORD;
typedef WORD* LPWORD;
typedef INT* PINT;
typedef INT* LPINT;
typedef UINT* PUINT;
typedef UINT* LPUINT;
typedef LONG* PLONG;
typedef LONG* LPLONG;
typedef ULONG* PULONG;
typedef DWORD* PDWORD;
typedef DWORD* LPDWORD;
typedef LONGLONG* PLONGLONG;
typedef ULONGLONG* PULONGLONG;
typedef SIZE_T* PSIZE_T;
typedef INT_PTR* PINT_PTR;
typedef UINT_PTR* PUINT_PTR;
typedef LONG_PTR* PLONG_PTR;
typedef ULONG_PTR* PULONG_PTR;
typedef DWORD_PTR* PDWORD_PTR;
typedef INT32* PINT32;
typedef UINT32* PUINT32;
typedef INT64* PINT64;
typedef UINT64* PUINT64;
typedef LONG64* PLONG64;
typedef ULONG64* PULONG64;
typedef DWORD64* PDWORD64;
typedef DWORDLONG* PDWORDLONG;
typedef BOOLEAN* PBOOLEAN;
typedef FLOAT* PFLOAT;
typedef WCHAR* PWCHAR;

typedef CHAR* PSTR; ///< 8-bit text, ended by a zero byte
typedef CHAR* LPSTR;
typedef CHAR* PSZ;
typedef CHAR* PCH;
typedef CHAR* LPCH;
typedef const CHAR* PCSTR;
typedef const CHAR* LPCSTR;
typedef const CHAR* PCCH;
typedef const CHAR* LPCCH;
typedef WCHAR* PWSTR; ///< Wide text, ended by a 32-bit zero
typedef WCHAR* LPWSTR;
typedef WCHAR* PWCH;
typedef WCHAR* LPWCH;
typedef const WCHAR* PCWSTR;
typedef const WCHAR* LPCWSTR;
typedef const WCHAR* PCWCH;
typedef const WCHAR* LPCWCH;

/// Handles are one pointer wide. What stands behind one is the library's own affair: hand it back
/// as it was given, to this library only.
typedef void* HANDLE;
typedef HANDLE* PHANDLE;
typedef HANDLE* LPHANDLE;
typedef void* HLOCAL;
typedef void* HGLOBAL;
typedef void* HINSTANCE;
typedef void* HMODULE;
typedef void* HWND;
typedef void* HKEY;
typedef HKEY* PHKEY;
typedef void* HKL;
typedef void* PSID; ///< Accepted where Windows accepts it, and never read
typedef DWORD LCID; ///< Accepted where Windows accepts it, and ignored
typedef DWORD LCTYPE;
typedef WORD LANGID; ///< Accepted where Windows accepts it, and ignored
typedef WORD ATOM;
typedef LONG HRESULT;

#define FALSE 0
#define TRUE 1

#define MAX_PATH 260 ///< Characters of the longest path that Windows sources provide room for

/// A value that is never a handle: all bits set.
#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)

/// A 64-bit integer, whole or in 32-bit halves.
typedef union _LARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        LONG HighPart;
    };
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
} LARGE_INTEGER, *PLARGE_INTEGER;

/// An unsigned 64-bit integer, whole or in 32-bit halves.
typedef union _ULARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        DWORD HighPart;
    };
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    ULONGLONG QuadPart;
} ULARGE_INTEGER, *PULARGE_INTEGER;

/// Accepted where Windows accepts it, and ignored everywhere.
typedef struct _SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *PSECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

/// Accepted by the file calls, which are all synchronous, and ignored.
typedef struct _OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    __extension__ union {
        __extension__ struct {
            DWORD Offset;
            DWORD OffsetHigh;
        };
        PVOID Pointer;
    };
    HANDLE hEvent;
} OVERLAPPED, *LPOVERLAPPED;

/// A calendar date and a time of day.
typedef struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;     ///< 1 to 12
    WORD wDayOfWeek; ///< 0 is Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME, *PSYSTEMTIME, *LPSYSTEMTIME;

/// A point in time in 32-bit halves; what it is counted from is said where it is returned.
typedef struct _FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME, *PFILETIME, *LPFILETIME;
