/// \file
/// Handles in general, and events.
///
/// A handle is valid until it is closed. Null, `INVALID_HANDLE_VALUE` and a handle that has been
/// closed are refused by every call before anything is read; using a closed handle is an error of
/// the caller all the same, for its address is given out again later.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#define INFINITE 0xFFFFFFFFu ///< Wait without a time limit

#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x00000080u     ///< Never returned: no mutex knows who had it
#define WAIT_ABANDONED_0 0x00000080u   ///< Never returned
#define WAIT_IO_COMPLETION 0x000000C0u ///< Never returned
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu

/// Gives up one reference to what a handle stands for, and the object with the last one.
///
/// \return `TRUE` when a reference was given up. `FALSE` with `errno` 22 for null, all ones, a
/// handle that is closed already, and whatever else is no event, mutex, thread, process or file
/// (registry keys, search handles and event sources have closing calls of their own).
///
/// Any thread may close any handle. A thread that waits for an event meanwhile gets `WAIT_FAILED`,
/// one that waits for a mutex without a name `WAIT_TIMEOUT`; one that waits for a mutex with a name
/// goes on waiting until somebody releases it. Threads and processes that run go on, and what has
/// ended can still be closed.
KXQTS_C_API BOOL CloseHandle(HANDLE h);

/// Waits until an event is signalled or a mutex is free, and takes it.
///
/// \param h An event or a mutex. Everything else, threads, processes and files included, gives
/// `WAIT_FAILED` at once: threads are joined and processes waited for by calls of their own.
/// \param milliseconds `INFINITE`, or a time. Any other value with the sign bit set gives
/// `WAIT_FAILED` without waiting. For an event the time is measured on a clock that nobody sets.
/// For a mutex it is counted in tries with a pause of a millisecond behind each, one more than
/// there are milliseconds; 0 is a single try. A mutex without a name is taken by an `INFINITE` wait
/// only and times out else.
/// \return `WAIT_OBJECT_0`, `WAIT_TIMEOUT` or `WAIT_FAILED`. `errno` is left alone by a wait for an
/// event; a wait for a mutex leaves the system's number when it was not taken.
/// \par Differs from Windows
/// Every event resets itself: a wait that succeeds takes the signal. A thread that has a mutex
/// already waits for it like any other.
KXQTS_C_API DWORD WaitForSingleObject(HANDLE h, DWORD milliseconds);

/// Makes an event.
///
/// \param sa Ignored.
/// \param bManualReset Ignored: every event resets itself and wakes one waiter a signal.
/// \param bInitialState Whether the event starts signalled.
/// \param lpName Ignored: events are never named nor shared between processes.
/// \return The handle, with `errno` 0. `INVALID_HANDLE_VALUE` (not null) with `errno` 8 when there
/// is no memory. The caller owns the handle until `CloseHandle`. An event needs no descriptor.
KXQTS_C_API HANDLE CreateEventA(LPSECURITY_ATTRIBUTES sa, BOOL bManualReset, BOOL bInitialState,
                                LPCSTR lpName);
/// \copydoc CreateEventA
KXQTS_C_API HANDLE CreateEventW(LPSECURITY_ATTRIBUTES sa, BOOL bManualReset, BOOL bInitialState,
                                LPCWSTR lpName);

/// Signals an event: one waiter goes on, or the next one that comes.
///
/// \return `TRUE`, also when it was signalled already (two signals before a wait release one wait).
/// `FALSE` for what is no live event. `errno` is left alone.
KXQTS_C_API BOOL SetEvent(HANDLE h);
