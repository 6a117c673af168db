/// \file
/// Dynamic libraries: module handles, their symbols and their file names.
///
/// Libraries are loaded with \ref loadLibrary, which takes Qt's text type and is declared in
/// `KxQts/files/library.h`. A module handle is given back with `FreeLibrary`, never with
/// `CloseHandle`.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// The address of a function of a module. Cast it to the function's own type, by way of `void*` if
/// the compiler warns about casts between function types.
typedef INT_PTR (*FARPROC)(void);

/// Finds a library that was loaded with \ref loadLibrary.
///
/// \param name The text that the library was loaded by, or its file name; null is an empty text,
/// which no library has.
/// \return The module; null, with `errno` left alone, when no such library is loaded.
/// \par Differs from Windows
/// The result counts: each one is given back with a `FreeLibrary` of its own. A null name does not
/// stand for the running program.
KXQTS_C_API HMODULE GetModuleHandleA(LPCSTR name);
/// \copydoc GetModuleHandleA
KXQTS_C_API HMODULE GetModuleHandleW(LPCWSTR name);

/// Looks a C symbol up in a module.
///
/// \return Its address; null when there is none, and, with `errno` left alone, when \a module is
/// null or no module or \a name is null. Symbols are not found by number.
KXQTS_C_API FARPROC GetProcAddress(HMODULE module, LPCSTR name);

/// Gives up one reference to a module. The last one unloads the library.
///
/// \return `FALSE`, with `errno` left alone, for null and for what is no loaded module.
KXQTS_C_API BOOL FreeLibrary(HMODULE module);

/// Gives a module's file name, in Latin-1.
///
/// \param size Characters that \a buffer has room for, the terminator included.
/// \return Characters stored, without the terminator, with `errno` 0. A name that does not fit is
/// cut and terminated: `size − 1` with `errno` 122; a size of 0 gives 0 with 122 and writes
/// nothing. 0 with `errno` 0 for a null buffer, null and what is no loaded module.
///
/// \par Differs from Windows
/// A null module does not stand for the running program, and a name that is cut gives `size − 1`.
KXQTS_C_API DWORD GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size);
/// \copydoc GetModuleFileNameA
KXQTS_C_API DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size);
