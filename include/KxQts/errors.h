/// \file
/// The numbers that calls leave in `errno` or return as a status, the same on every system.
///
/// Some are POSIX numbers, some Windows error numbers, some the library's own; where a call says
/// "as left by" a system call, the system's number stands instead.
#pragma once

namespace Korvex::Error {

/// A folder on the way may not be searched
inline constexpr int StatusNoRight = -5000;
/// A name or the path is too long
inline constexpr int StatusNameTooLong = -1410;
/// Something on the way is no folder
inline constexpr int StatusNoFolder = -1407;
/// No memory
inline constexpr int StatusNoMemory = -108;
/// A transfer failed
inline constexpr int StatusReadFailed = -36;
/// Success
inline constexpr int None = 0;
/// Nothing found by a search that reached its end
inline constexpr int InvalidFunction = 1;
/// No such file
inline constexpr int NotFound = 2;
/// Reading or writing failed
inline constexpr int TransferFailed = 5;
/// What is no open search
inline constexpr int InvalidHandle = 6;
/// An event could not be made
inline constexpr int NotEnoughMemory = 8;
/// An object or buffer could not be made
inline constexpr int NoMemory = 12;
/// A program could not be started
inline constexpr int CannotStart = 14;
/// There is one of that name already
inline constexpr int Exists = 17;
/// There is no such disk
inline constexpr int NoSuchDevice = 19;
/// A bad handle or argument
inline constexpr int InvalidArgument = 22;
/// A result does not fit
inline constexpr int OutOfRange = 34;
/// Not now; a thread could not be started
inline constexpr int TryAgain = 35;
/// The call is a stub
inline constexpr int Unsupported = 50;
/// There is a connection already
inline constexpr int Connected = 56;
/// There is no connection
inline constexpr int NotConnected = 57;
/// A property is of another type, or does not fit
inline constexpr int BadDeviceType = 66;
/// The target of a copy exists
inline constexpr int FileExists = 80;
/// A bad parameter, as Windows numbers it
inline constexpr int InvalidParameter = 87;
/// No answer in time
inline constexpr int TimedOut = 101;
/// A text does not fit the buffer given
inline constexpr int BufferTooSmall = 122;
/// More than fits the buffer given
inline constexpr int MoreData = 234;
/// There is no number property of that number
inline constexpr int BadKey = 1010;
/// What was looked for does not exist
inline constexpr int ElementNotFound = 1168;
/// A file could not be copied
inline constexpr int CopyFailed = 1287;
/// A conversion failed inside
inline constexpr int Internal = 1359;
/// There is no property of that number
inline constexpr int IndexAbsent = 1611;
/// Passwords are not verified on this system
inline constexpr int VerifierUnsupported = 9000;
/// There is no library that verifies passwords
inline constexpr int VerifierMissing = 9001;
/// The library that verifies passwords has no function for it
inline constexpr int VerifierUnusable = 9002;
/// A daemon's payload cannot be allocated
inline constexpr int NoPayloadMemory = 28680;
/// No daemon socket, one in use, or sessions locked
inline constexpr int SocketUnavailable = 30761;
/// The daemon is not connected
inline constexpr int DaemonNotConnected = 30766;
/// A byte for the daemon could not be written
inline constexpr int DaemonWriteFailed = 30768;
/// Links lead round in a circle
inline constexpr int StatusLinkLoop = 100062;

} // namespace Korvex::Error
