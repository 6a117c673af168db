/// \file
/// Control requests to a driver.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Sends a request to a driver and receives the reply.
///
/// The in-buffer is the exchange buffer: the reply overwrites the request in it, and is cut to its
/// size.
/// \param socket A connection that `KextConnect` made, in place of a device handle.
/// \param controlCode The driver's option number.
/// \param inBuffer,inSize The request, at least one byte and at most 131,072.
/// \param outBuffer,outSize Where the reply is copied to, as far as it fits; without room (null or
/// 0) the reply stays in the in-buffer and \a bytesReturned is left alone.
/// \param bytesReturned Receives the count of bytes copied; may be null.
/// \param overlapped Ignored: the call waits for the reply.
/// \return `TRUE` with `errno` 0. `FALSE` with `errno` 87 without a request, −1 when the exchange
/// failed (not the number of the failure).
KXQTS_C_API BOOL DeviceIoControl(int socket, unsigned int controlCode, void* inBuffer,
                                 unsigned int inSize, void* outBuffer, unsigned int outSize,
                                 unsigned int* bytesReturned, struct _OVERLAPPED* overlapped);
