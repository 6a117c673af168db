/// \file
/// Small calls that sources written for Windows make and that stand for calls of the C library and
/// of this library. They are in place: the library does not export them.
#pragma once

#include <KxQts/winapi/find.h>
#include <KxQts/winapi/kernelcontrol.h>
#include <KxQts/winapi/profiles.h>
#include <KxQts/winapi/systeminfo.h>
#include <KxQts/winapi/text.h>
#include <KxQts/windows/kxaliases.h>
#include <KxQts/windows/kxwideformat.h>

#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>
#include <wchar.h>

#define FindNextFileA FindNextFile
#define FindNextFileW FindNextFile

#define CopyMemory(dst, src, length) memcpy((dst), (src), (length))
#define MoveMemory(dst, src, length) memmove((dst), (src), (length))
#define FillMemory(dst, length, byte) memset((dst), (byte), (length))
#define SecureZeroMemory ZeroMemory
#define RtlZeroMemory ZeroMemory
#define RtlCopyMemory CopyMemory
#define RtlMoveMemory MoveMemory
#define RtlFillMemory FillMemory

#define LMEM_FIXED 0x0000u
#define LMEM_ZEROINIT 0x0040u
#define LPTR 0x0040u

/// Memory that `LocalFree` takes back: zeros, whatever \a flags say. \return Null without memory.
static inline HLOCAL LocalAlloc(UINT flags, SIZE_T size) {
    (void)flags;
    return calloc(size > 0 ? size : 1, 1);
}

/// Ends the process, as `exit` does.
__attribute__((noreturn)) static inline void ExitProcess(UINT code) {
    exit((int)code);
}

/// Ends the calling thread. C++ objects of the thread are destroyed. \param code Nobody asks for
/// it.
__attribute__((noreturn)) static inline void ExitThread(DWORD code) {
    pthread_exit((void*)(uintptr_t)code);
}

/// The system's number of this process.
static inline DWORD GetCurrentProcessId(void) {
    return (DWORD)getpid();
}

/// Compares two times of one kind. \return −1, 0 or 1.
static inline LONG CompareFileTime(const FILETIME* a, const FILETIME* b) {
    if (a->dwHighDateTime != b->dwHighDateTime)
        return a->dwHighDateTime < b->dwHighDateTime ? -1 : 1;
    if (a->dwLowDateTime != b->dwLowDateTime)
        return a->dwLowDateTime < b->dwLowDateTime ? -1 : 1;
    return 0;
}

/// Reads a value of a profile as a number. \return \a number when there is no such value, 0 when it
/// does not begin with digits.
static inline UINT GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT number, LPCSTR file) {
    char text[32] = "";
    const DWORD length = GetPrivateProfileStringA(section, key, "", text, sizeof text, file);
    return length == 0 ? (UINT)number : (UINT)atoll(text);
}
/// \copydoc GetPrivateProfileIntA
static inline UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT number, LPCWSTR file) {
    WCHAR text[32] = {0};
    const DWORD length = GetPrivateProfileStringW(section, key, L"", text, 31, file);
    WCHAR* end = text;
    return length == 0 ? (UINT)number : (UINT)wcstoll(text, &end, 10);
}

/// \name Texts
/// A null text has no characters.
/// @{
static inline int lstrlenA(LPCSTR text) {
    return text ? (int)strlen(text) : 0;
}
static inline int lstrlenW(LPCWSTR text) {
    return text ? (int)wcslen(text) : 0;
}
/// @}

#define lstrcpyA strcpy
#define lstrcpyW wcscpy
#define lstrcatA strcat
#define lstrcatW wcscat
#define lstrcmpA strcoll
#define lstrcmpW wcscoll
#define lstrcmpiA strcasecmp
#define lstrcmpiW wcscasecmp
#define wsprintfA sprintf
#define wsprintfW kx_swprintf_unbounded
#define wvsprintfA vsprintf
#define wvsprintfW kx_vswprintf_unbounded

#define GetPrivateProfileInt KXQTS_ALIAS(GetPrivateProfileInt)
#define lstrcat KXQTS_ALIAS(lstrcat)
#define lstrcmp KXQTS_ALIAS(lstrcmp)
#define lstrcmpi KXQTS_ALIAS(lstrcmpi)
#define lstrcpy KXQTS_ALIAS(lstrcpy)
#define lstrlen KXQTS_ALIAS(lstrlen)
#define wsprintf KXQTS_ALIAS(wsprintf)
#define wvsprintf KXQTS_ALIAS(wvsprintf)

#ifdef __cplusplus
extern "C++" {
/// For sources that keep the connection to a driver in a handle: `(HANDLE)(INT_PTR)socket`.
inline BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD inSize, LPVOID out,
                            DWORD outSize, LPDWORD returned, LPOVERLAPPED overlapped) {
    return DeviceIoControl((int)(INT_PTR)device, code, in, inSize, out, outSize, returned,
                           overlapped);
}

/// For sources that ask for the keyboard of a thread. \param thread Ignored.
inline HKL GetKeyboardLayout(DWORD thread) {
    (void)thread;
    return GetKeyboardLayout();
}
}
#else
#define GetKeyboardLayout(...) (GetKeyboardLayout)()
#endif
