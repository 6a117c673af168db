/// \file
/// What `#include <windef.h>` finds in a source written for Windows: the basic types, the words
/// that go with them, and the macros that take numbers apart.
#pragma once

#include <KxQts/winapi/types.h>
#include <KxQts/windows/kxkeywords.h>
#include <KxQts/windows/sal.h>

// Left out on purpose, for headers of the system and of Qt use them as ordinary names: interface,
// small, near, far, and in C++ min and max.
#define WINAPI
#define WINAPIV
#define WINBASEAPI
#define APIPRIVATE
#define CALLBACK
#define NTAPI
#define PASCAL
#define STDAPICALLTYPE
#define FORCEINLINE __forceinline
#define DECLSPEC_NORETURN __attribute__((noreturn))
#define DECLSPEC_ALIGN(bytes) __attribute__((aligned(bytes)))
#define UNALIGNED
#define CONST const
#define VOID void
#define FAR
#define NEAR
#define IN
#define OUT
#define OPTIONAL
#ifndef APIENTRY // OpenGL's headers have it, too
#define APIENTRY
#endif

#ifdef __cplusplus
#define EXTERN_C extern "C"
#else
#define EXTERN_C extern
#endif

#define LOBYTE(word) ((BYTE)((DWORD_PTR)(word)&0xFFu))
#define HIBYTE(word) ((BYTE)(((DWORD_PTR)(word) >> 8) & 0xFFu))
#define LOWORD(value) ((WORD)((DWORD_PTR)(value)&0xFFFFu))
#define HIWORD(value) ((WORD)(((DWORD_PTR)(value) >> 16) & 0xFFFFu))
#define MAKEWORD(low, high) ((WORD)((BYTE)(low) | ((WORD)(BYTE)(high) << 8)))
#define MAKELONG(low, high) ((LONG)((DWORD)(WORD)(low) | ((DWORD)(WORD)(high) << 16)))

#define MAKEWPARAM(low, high) ((WPARAM)(DWORD)MAKELONG(low, high))
#define MAKELPARAM(low, high) ((LPARAM)(DWORD)MAKELONG(low, high))
#define MAKELRESULT(low, high) ((LRESULT)(DWORD)MAKELONG(low, high))

#if !defined(__cplusplus) && !defined(NOMINMAX)
#ifndef min
#define min(a, b) ((a) < (b) ? (a) : (b))
#endif
#ifndef max
#define max(a, b) ((a) > (b) ? (a) : (b))
#endif
#endif
