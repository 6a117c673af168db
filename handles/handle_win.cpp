#include <KxQts/errors.h>
#include <KxQts/winapi/handles.h>

#include "handles/classes.h"

#include <cerrno>

BOOL CloseHandle(HANDLE h) {
    const Korvex::HandleClass* known = Korvex::classOf(h);
    if (!known || !known->close) {
        errno = Korvex::Error::InvalidArgument;
        return FALSE;
    }
    return known->close(h);
}

DWORD WaitForSingleObject(HANDLE h, DWORD milliseconds) {
    const Korvex::HandleClass* known = Korvex::classOf(h);
    return known && known->wait ? known->wait(h, milliseconds) : WAIT_FAILED;
}
