/// \file
/// The numbers that calls leave in `errno` or return as a status, the same on every system.
///
/// Some are POSIX numbers, some Windows error numbers, some the library's own; where a call says
/// "as left by" a system call, the system's number stands instead.
#pragma once

namespace Korvex::Error {

inline constexpr int None = 0;
inline constexpr int NotFound = 2;          ///< No such file
inline constexpr int TransferFailed = 5;    ///< Reading or writing failed
inline constexpr int NotEnoughMemory = 8;   ///< An event could not be made
inline constexpr int NoMemory = 12;         ///< An object or buffer could not be made
inline constexpr int Exists = 17;           ///< There is one of that name already
inline constexpr int CannotStart = 14;      ///< A program could not be started
inline constexpr int InvalidArgument = 22;  ///< A bad handle or argument
inline constexpr int OutOfRange = 34;       ///< A result does not fit
inline constexpr int TryAgain = 35;         ///< Not now; a thread could not be started
inline constexpr int Unsupported = 50;      ///< The call is a stub
inline constexpr int Connected = 56;        ///< There is a connection already
inline constexpr int NotConnected = 57;     ///< There is no connection
inline constexpr int InvalidParameter = 87; ///< A bad parameter, as Windows numbers it
inline constexpr int TimedOut = 101;        ///< No answer in time
inline constexpr int BufferTooSmall = 122;  ///< A text does not fit the buffer given
inline constexpr int Internal = 1359;       ///< A conversion failed inside

// The daemon exchanges' own.
inline constexpr int NoPayloadMemory = 28680;    ///< A payload cannot be allocated
inline constexpr int SocketUnavailable = 30761;  ///< No socket, one in use, or sessions locked
inline constexpr int DaemonNotConnected = 30766; ///< The daemon is not connected
inline constexpr int DaemonWriteFailed = 30768;  ///< A byte for the daemon could not be written

} // namespace Korvex::Error
