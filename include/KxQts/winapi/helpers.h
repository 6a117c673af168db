/// \file
/// Calls that every source written for Windows makes and that need nothing from the library but
/// what it has anyway. They are inline: the library does not export them.
#pragma once

#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/text.h>
#include <KxQts/winapi/types.h>

#include <errno.h>

/// Tells the number that the last call of this thread left behind: `errno`. Many calls leave POSIX
/// numbers there, and calls that say nothing of `errno` may leave it as it was.
static inline DWORD GetLastError(void) {
    return (DWORD)errno;
}

/// Sets what `GetLastError` tells in this thread.
static inline void SetLastError(DWORD error) {
    errno = (int)error;
}

/// Lets the calling thread sleep; `INFINITE` for ever. `errno` is left alone.
/// \par Differs from Windows
/// A signal that the program handles ends the sleep, unless it is one for ever.
static inline void Sleep(DWORD ms) {
    const int error = errno;
    if (ms == INFINITE)
        for (;;)
            (void)kx_sleep(ms);
    (void)kx_sleep(ms);
    errno = error;
}
