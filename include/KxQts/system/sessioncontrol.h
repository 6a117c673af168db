/// \file
/// Ending the work of the machine, of the session and of applications.
///
/// On Linux logind on the system bus is asked: to reboot, to power off, or to terminate the session
/// that the calling process belongs to. Its own policy says who may.
#pragma once

#include <KxQts/export.h>
#include <KxQts/platformtypes.h>

/// Sends a request to the system.
/// \param eventId `kAERestart`, `kAEReallyLogOut` or `kAEShutDown`.
/// \return 0 when it was taken. −609 without a bus or logind, −600 in no session, −10004 without the
/// right, −1712 without an answer within a minute, −10000 for other failures, −1708 for any other
/// event.
KXQTS_EXPORT OSErr sendEventToSystemProcess(unsigned long eventId);

/// \name Never return
/// Each sends its request and ends the calling process with the exit status 0, **whatever became of
/// the request**.
/// @{

/// Restarts the machine.
[[noreturn]] KXQTS_EXPORT void forceRestart();
/// Ends the session of the calling process.
[[noreturn]] KXQTS_EXPORT void forceLogOut();
/// Turns the machine off.
[[noreturn]] KXQTS_EXPORT void forceShutDown();
/// @}

/// Asks an application to quit (`SIGTERM`) and waits for its end if it is a child of the caller.
///
/// **The match is loose**: the first process, by its id, whose name occurs in \a name without
/// regard to case, once it is cut to the length of \a name. "Tool" is found by "MyTool", "t" by
/// "Tool". Names of processes are their commands', 15 bytes at most. Only processes of the caller's
/// effective user are looked at, and never the caller itself, process 1, kernel threads, those that
/// have ended and, when the caller is root, what the service manager runs. An empty name finds
/// none.
/// \param name Latin-1, at most 255 bytes.
/// \return 0 when it was asked. 1 after the end of a child, or when the waiting failed; a line about
/// it goes to standard output. −1 for a longer name and null, −600 when there is no such process,
/// −10004 when it may not be asked.
KXQTS_EXPORT int forceApplicationQuit(const char* name);
