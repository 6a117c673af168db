#include <KxQts/errors.h>
#include <KxQts/winapi/handles.h>

#include "handles/classes.h"

#include <cerrno>
#include <pthread.h>

BOOL CloseHandle(HANDLE h) {
    const Korvex::TaggedHandle handle(h);
    if (handle.handleClass() && handle.handleClass()->close)
        return handle.handleClass()->close(h);
    // What a thread's or process's end left for its client to close.
    if (Korvex::HandleAddresses::giveBackEnded(h))
        return TRUE;
    errno = Korvex::Error::InvalidArgument;
    return FALSE;
}

DWORD WaitForSingleObject(HANDLE h, DWORD milliseconds) {
    constexpr DWORD signBit = 0x80000000u;
    if (milliseconds != INFINITE && (milliseconds & signBit) != 0)
        return WAIT_FAILED;
    // A thread can be terminated here also when it finds everything free and never has to wait.
    pthread_testcancel();
    Korvex::TaggedHandle handle(h);
    if (!handle.handleClass() || !handle.handleClass()->wait)
        return WAIT_FAILED;
    return handle.handleClass()->wait(h, milliseconds, handle.lock());
}
