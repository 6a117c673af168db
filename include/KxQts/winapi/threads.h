/// \file
/// Threads: starting and terminating. `CloseHandle` closes the handle of one.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// What a thread runs. Its result is not kept: no call tells it.
typedef DWORD (*PTHREAD_START_ROUTINE)(LPVOID lpParameter);
typedef PTHREAD_START_ROUTINE LPTHREAD_START_ROUTINE;

/// Starts a thread.
///
/// \param sa Ignored.
/// \param dwStackSize Bytes of stack, at least 16384. The thread gets at least 512 KiB, so that it
/// can print, use Qt and call this library whatever was asked for; memory is used as it is needed.
/// \param lpStartAddress The routine.
/// \param lpParameter Handed to the routine.
/// \param dwCreationFlags Ignored: every thread runs at once.
/// \param lpThreadId Ignored; nothing is written there.
/// \return The handle, with `errno` 0, owned by the caller until `CloseHandle`; null with `errno`
/// 22 (no routine), 12 (no memory) or 35 (the system starts no thread).
///
/// A thread whose handle is closed goes on; what it needed is freed when it ends. A thread that
/// ends frees what it needed too: from then on its handle can be closed, and does nothing else.
/// `WaitForSingleObject` does not take thread handles: let the routine signal an event as its last
/// act.
///
/// The end of `main` ends the process with all its threads, and unloading the library does not
/// unload it any more once a thread has been started.
KXQTS_C_API HANDLE CreateThread(LPSECURITY_ATTRIBUTES sa, SIZE_T dwStackSize,
                                LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter,
                                DWORD dwCreationFlags, LPDWORD lpThreadId);

/// Ends a thread and waits, without limit, until it has ended.
///
/// \param h The thread. Its handle stays the caller's to close.
/// \param dwExitCode Ignored.
/// \return `TRUE` when the thread has ended, also of its own accord; `FALSE` for what is no handle
/// of a running thread. `errno` is not part of the result.
///
/// The thread ends where it next waits, sleeps or does input or output: in a wait for an event or a
/// mutex, in reading a file, in a network exchange. One that only calculates is not ended, and this
/// call waits until it does one of these. Its C++ objects are destroyed and `catch (...)` blocks
/// that it is in are run (which must throw it on; so must no `noexcept` function be on its way).
/// Meanwhile other calls for thread handles wait: what is run at its end must make none.
///
/// A thread that terminates itself ends in this call.
///
/// \warning As on Windows, whatever the thread had begun stays as it is: memory that only plain C
/// code knew, files half written, mutexes that it had taken or was just being given, and data of
/// the program that it was about to change. Use it when there is nothing else left.
KXQTS_C_API BOOL TerminateThread(HANDLE h, DWORD dwExitCode);

/// A number that tells the calling thread from the others of its process that run at the same time.
/// It is the lower half of a longer one where pointers have 64 bits.
KXQTS_C_API DWORD GetCurrentThreadId(void);
