/// \file
/// The processes of this machine.
#pragma once

#include <KxQts/export.h>
#include <KxQts/platformtypes.h>

/// Lists all processes.
/// \param list Receives an array that the caller deletes (`delete[]`). \param count Receives the
/// count of its records; 0 on failure.
/// \return 0; 12 without memory; 22 when an argument is null; the system's error number.
KXQTS_EXPORT int GetBSDProcessList(kinfo_proc** list, unsigned long* count);

/// Tells whether an application is running: whether a process's name holds \a name, but not
/// \a name and a D behind it. Case does not matter in either. Names of processes are their
/// commands', 15 bytes at most.
/// \param name Latin-1, at most 255 bytes; an empty one is held by every name.
/// \param running,count Receive whether there are such processes and how many. May be null.
/// \return 0. −1 for a longer name and null, and when there are no processes at all; 12 without
/// memory; the system's error number.
KXQTS_EXPORT int checkApplicationAlreadyRunning(const char* name, bool* running, int* count);
