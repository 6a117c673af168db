/// \file
/// Mutexes: creating and releasing. `WaitForSingleObject` takes one, `CloseHandle` closes it.
///
/// A mutex has no owner here: any thread and any process may release it, taking it twice waits for
/// a release in between, and releasing one that is free lets two takers in. A thread that ends does
/// not give back what it has taken.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Makes a mutex, or opens the one of a name.
///
/// A mutex without a name is private to its process and always starts free. Its semaphore is the
/// system's (a set of one, of which a machine has a limited number) and is removed with the handle;
/// when the process ends the system takes back what it still held.
///
/// A mutex with a name is a semaphore that every process finds by that name. It **outlives all
/// handles and all processes**, taken or free as it was left; `kx mutexes` lists, releases and
/// removes them. Names follow the system's rules and are passed on unchanged, as Latin-1: on Linux
/// up to 251 characters without a slash, except one in front.
///
/// \param sa Ignored.
/// \param bInitialOwner Whether a named mutex starts taken. A mutex that exists in the system
/// already is never joined by a caller who asks to own it: that fails. Ignored without a name.
/// \param lpName The name, up to its first zero; null or empty for none.
/// \return The handle, owned by the caller until `CloseHandle`; null on failure, with `errno` as
/// left by the system (17 when the name exists and \a bInitialOwner asks to own it).
///
/// With success `errno` says where the mutex comes from: it is left alone for a new one; 17 means
/// that the name existed already. When this process itself has a mutex of that name, the result is
/// **the same handle** with one more reference: it is closed once for each time it was returned.
///
/// \warning In that last case the calling thread **keeps the lock of all mutex handles of its
/// process** for good. It can go on itself, but every other thread that creates, waits for,
/// releases or closes a mutex from then on waits for ever. So create each name once in a process
/// that has more threads than one.
KXQTS_C_API HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES sa, BOOL bInitialOwner, LPCSTR lpName);
/// \copydoc CreateMutexA
KXQTS_C_API HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES sa, BOOL bInitialOwner, LPCWSTR lpName);

/// Gives a mutex back: one waiting thread, of whatever process, goes on.
///
/// \return `TRUE`, whoever had taken the mutex and whether or not anybody had; `FALSE` for what is
/// no live mutex, and when the system refuses (its number is in `errno`).
KXQTS_C_API BOOL ReleaseMutex(HANDLE h);
