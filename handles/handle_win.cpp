#include <KxQts/errors.h>
#include <KxQts/winapi/handles.h>

#include "handles/classes.h"

#include <cerrno>

BOOL CloseHandle(HANDLE h) {
    const Korvex::TaggedHandle handle(h);
    if (!handle.handleClass() || !handle.handleClass()->close) {
        errno = Korvex::Error::InvalidArgument;
        return FALSE;
    }
    return handle.handleClass()->close(h);
}

DWORD WaitForSingleObject(HANDLE h, DWORD milliseconds) {
    Korvex::TaggedHandle handle(h);
    if (!handle.handleClass() || !handle.handleClass()->wait)
        return WAIT_FAILED;
    return handle.handleClass()->wait(h, milliseconds, handle.lock());
}
