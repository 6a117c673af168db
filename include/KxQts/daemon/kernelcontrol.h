/// \file
/// Control calls to a driver: connections by control name and unit, requests by option number.
///
/// `DeviceIoControl` in `KxQts/winapi/kernelcontrol.h` is the Windows face of the same exchange.
/// What option numbers, requests and replies mean is the driver's affair. Any thread may call;
/// requests of several threads on one connection are answered one after the other.
#pragma once

#include <KxQts/export.h>

/// Connects to the first free slot of a driver's unit.
///
/// Bits 8 and 9 of the unit select one of four slots. The call starts with the caller's slot and
/// counts up; when all are busy it sleeps for 100 ms and starts again from slot 0, 300 times in
/// all, so it may take about 30 seconds.
/// \param controlName At most 96 characters count.
/// \param socket Receives the connection, a descriptor that the caller closes with `close`; −1 on
/// failure.
/// \return 0 with `errno` 0. 22 for a null name; otherwise what the system gave, which is 2 for a
/// control or a unit that nobody offers and 16 when all slots stayed busy.
KXQTS_EXPORT int KextConnect(const char* controlName, unsigned int unit, int& socket);

/// Sends a request and receives its reply in the same buffer.
///
/// \param socket A connection of \ref KextConnect.
/// \param value The request; the reply overwrites it.
/// \param valueSize The size of the request and of the buffer, in bytes, at most 131,072; receives
/// the count of bytes that the reply has put there. A reply that is longer than the buffer is cut.
/// \return 0, or −1 with `errno` as the driver or the system left it.
KXQTS_EXPORT int KextControl(int socket, unsigned int option, void* value, unsigned int* valueSize);

/// Sends a bare command and waits until the driver has taken it.
///
/// \return 0, or −1 with `errno` as the driver or the system left it.
KXQTS_EXPORT int KextCommand(int socket, unsigned int command);
