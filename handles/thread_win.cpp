// Security attributes, creation flags, the place for a thread identifier and exit codes are ignored
// on purpose.

#include <KxQts/errors.h>
#include <KxQts/handles/thread.h>
#include <KxQts/winapi/threads.h>

#include "handles/disposal.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <memory>

using Korvex::WThread;
namespace Error = Korvex::Error;

namespace {

unsigned int stackSizeFor(SIZE_T asked) {
    constexpr SIZE_T least = 16384;
    constexpr SIZE_T most = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(std::clamp(asked, least, most));
}

} // namespace

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T dwStackSize,
                    LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter, DWORD, LPDWORD) {
    if (!lpStartAddress) {
        errno = Error::InvalidArgument;
        return nullptr;
    }
    std::unique_ptr<WThread> thread(
        Korvex::makeHandle<WThread>(stackSizeFor(dwStackSize), lpStartAddress, lpParameter));
    if (!thread) {
        errno = Error::NoMemory;
        return nullptr;
    }
    const bool isStarted = thread->invoke();
    // A thread that was started belongs to its handle: it may have ended, and its object be gone.
    HANDLE handle = isStarted ? thread.release() : nullptr;
    thread.reset();
    errno = isStarted ? Error::None : Error::TryAgain;
    return handle;
}

BOOL TerminateThread(HANDLE h, DWORD dwExitCode) {
    return WThread::kill(static_cast<WThread*>(h), dwExitCode);
}

DWORD GetCurrentThreadId(void) {
    return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(QThread::currentThreadId()));
}
