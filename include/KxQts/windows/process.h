/// \file
/// What `#include <process.h>` finds in a source written for Windows: the system's own calls for
/// processes under their plain names (`getpid`, `execv`), `exit`, `abort` and `system`, and threads
/// that begin and end in the C runtime.
#pragma once

#include <KxQts/winapi/threads.h>
#include <KxQts/windows/kxcrt.h>

#include <pthread.h>
#include <stdlib.h>
#include <unistd.h>

static inline int _getpid(void) {
    return getpid();
}

/// Starts a thread with \ref CreateThread, whose remarks hold. What \a routine returns is not kept.
/// \return The handle, which the caller closes with `CloseHandle`; 0 when there is no thread, with
/// `errno` as \ref CreateThread leaves it.
/// \par Ignored
/// security, flags (every thread runs at once), id (nothing is written there).
static inline uintptr_t _beginthreadex(void* security, unsigned size, unsigned (*routine)(void*),
                                       void* parameter, unsigned flags, unsigned* id) {
    return (uintptr_t)CreateThread((LPSECURITY_ATTRIBUTES)security, size, routine, parameter, flags,
                                   id);
}

/// Ends the calling thread. C++ objects of the thread are destroyed. \param code Nobody asks for
/// it.
__attribute__((noreturn)) static inline void _endthreadex(unsigned code) {
    pthread_exit((void*)(uintptr_t)code);
}
