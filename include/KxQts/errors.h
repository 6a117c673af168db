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
inline constexpr int InvalidHandle = 6;     ///< What is no open search
inline constexpr int NotEnoughMemory = 8;   ///< An event could not be made
inline constexpr int NoMemory = 12;         ///< An object or buffer could not be made
inline constexpr int Exists = 17;           ///< There is one of that name already
inline constexpr int InvalidArgument = 22;  ///< A bad handle or argument
inline constexpr int OutOfRange = 34;       ///< A result does not fit
inline constexpr int TryAgain = 35;         ///< Not now; a thread could not be started
inline constexpr int Unsupported = 50;      ///< The call is a stub
inline constexpr int FileExists = 80;       ///< The target of a copy exists
inline constexpr int InvalidParameter = 87; ///< A bad parameter, as Windows numbers it
inline constexpr int CopyFailed = 1287;     ///< A file could not be copied
inline constexpr int Internal = 1359;       ///< A conversion failed inside

/// \name File statuses
/// Why it could not be told whether a file exists.
/// @{
inline constexpr int StatusReadFailed = -36;    ///< Reading failed
inline constexpr int StatusNoMemory = -108;     ///< No memory
inline constexpr int StatusNoFolder = -1407;    ///< Something on the way is no folder
inline constexpr int StatusNameTooLong = -1410; ///< A name or the path is too long
inline constexpr int StatusNoRight = -5000;     ///< A folder on the way may not be searched
inline constexpr int StatusLinkLoop = 100062;   ///< Links lead round in a circle
/// @}

} // namespace Korvex::Error
