/// \file
/// What every exported declaration is marked with.
#pragma once

/// Makes a function, class or object visible to clients of the library.
#define KXQTS_EXPORT __attribute__((visibility("default")))

/// Keeps a private member of a visible class inside the library.
#define KXQTS_INTERNAL __attribute__((visibility("hidden")))

/// C linkage for functions that programs in C and in C++ call.
#ifdef __cplusplus
#define KXQTS_C_API extern "C" KXQTS_EXPORT
#else
#define KXQTS_C_API extern KXQTS_EXPORT
#endif
