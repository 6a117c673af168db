/// \file
/// Programs that are run with an administrator's rights, after the user was asked.
///
/// On Linux polkit asks, and `pkexec` runs the program by a helper of the library. A process that
/// is root is not asked. The answer is kept for this process as the policy of the action
/// "com.korvex.kxqts.run-as-administrator" says: as installed, for five minutes after it was given.
/// What is run gets no environment but what `pkexec` leaves. Statuses are 0 or numbers of
/// `platformtypes.h`: −60005 refused, −60006 dismissed by the user, −60007 nobody there can ask the
/// user, −60008 no polkit, −60031 the program could not be started.
/// \par Threads
/// The authorisation that is kept is one for the process, without a lock: callers see to it that
/// one thread at a time calls \ref runPrivilegedCommand and \ref authDestructor.
#pragma once

#include <KxQts/export.h>
#include <KxQts/platformtypes.h>

/// Asks for the right to act as an administrator.
/// \param ref Receives an authorisation, which is the caller's. \param flags For its making; ignored
/// on Linux.
/// \return 0 or the first status that is not. \a ref is set even when the right is refused.
KXQTS_EXPORT OSStatus requestAuthorization(const AuthorizationOpaqueRef*& ref, unsigned long flags);

/// Asks for the right, starts a program with it, waits 100 ms and forgets the authorisation.
/// \param toolPath An absolute path. \param args The program's arguments without its name, up to a
/// null one; null for none.
/// \param flags For making and freeing the authorisation. With `kAuthorizationFlagDestroyRights`
/// the answer is not kept either.
/// \return 0 when the program runs; its end is not waited for. What went wrong otherwise.
KXQTS_EXPORT OSStatus runPrivilegedCommandOnce(const char* toolPath, const char* const* args,
                                               unsigned long flags);

/// As above, with an authorisation that later calls use as well, so that the user is not asked
/// again. A run that fails is tried once more with a new one. Writes the path, the status and the
/// arguments to standard output.
KXQTS_EXPORT OSStatus runPrivilegedCommand(const char* toolPath, const char* const* args);

/// Gives the authorisation of \ref runPrivilegedCommand up, so that the user is asked again. The
/// end of the library does the same.
KXQTS_EXPORT void authDestructor();
