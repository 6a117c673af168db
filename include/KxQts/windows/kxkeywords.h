/// \file
/// The words that a compiler for Windows knows beside the language's own, and what they mean here,
/// where there is one calling convention.
#pragma once

// clang knows some of these words itself and remarks that they are hidden.
#pragma GCC system_header

#define __cdecl
#define __stdcall
#define __fastcall
#define __thiscall
#define __vectorcall

#define __int8 char
#define __int16 short
#define __int32 int
#define __int64 long long

#define __forceinline inline __attribute__((always_inline))

/// What may stand in `__declspec`. Everything else is an error, since dropping it in silence could
/// change what the program does.
#define __declspec(what) KXQTS_DECLSPEC_##what
#define KXQTS_DECLSPEC_align(bytes) __attribute__((aligned(bytes)))
#define KXQTS_DECLSPEC_deprecated __attribute__((deprecated))
#define KXQTS_DECLSPEC_dllexport __attribute__((visibility("default")))
#define KXQTS_DECLSPEC_dllimport
#define KXQTS_DECLSPEC_noinline __attribute__((noinline))
#define KXQTS_DECLSPEC_noreturn __attribute__((noreturn))
#define KXQTS_DECLSPEC_nothrow __attribute__((nothrow))
#define KXQTS_DECLSPEC_novtable
#define KXQTS_DECLSPEC_selectany __attribute__((weak))
#ifdef __cplusplus
#define KXQTS_DECLSPEC_thread thread_local
#else
#define KXQTS_DECLSPEC_thread __thread
#endif

/// The number of an array's elements, which <stdlib.h> knows on Windows.
#define _countof(array) (sizeof(array) / sizeof((array)[0]))
