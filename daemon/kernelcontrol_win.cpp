// The overlapped structure is ignored on purpose: the call waits for the reply.

#include <KxQts/daemon/kernelcontrol.h>
#include <KxQts/errors.h>
#include <KxQts/winapi/kernelcontrol.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

BOOL DeviceIoControl(int socket, unsigned int controlCode, void* inBuffer, unsigned int inSize,
                     void* outBuffer, unsigned int outSize, unsigned int* bytesReturned,
                     _OVERLAPPED*) {
    errno = Korvex::Error::InvalidParameter;
    if (inSize == 0 || !inBuffer)
        return FALSE;
    unsigned int size = inSize;
    // The result itself, not the number of the failure: callers tell the two apart by it.
    const int result = KextControl(socket, controlCode, inBuffer, &size);
    errno = result;
    if (result == -1)
        return FALSE;
    if (outSize == 0 || !outBuffer)
        return TRUE;
    const unsigned int count = std::min({outSize, size, inSize});
    // The caller may use one buffer for both.
    std::memmove(outBuffer, inBuffer, count);
    if (bytesReturned)
        *bytesReturned = count;
    return TRUE;
}
