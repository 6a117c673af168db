/// \file
/// Preference domains by their published calls: the top-level values of one property list.
///
/// There are two scopes: `kCFPreferencesAnyUser` with `kCFPreferencesCurrentHost`, and
/// `kCFPreferencesCurrentUser` with `kCFPreferencesAnyHost`. Other pairs have no store: nothing is
/// read from them and they fail to synchronise. A domain named by an absolute path is that path
/// with ".plist" behind it, in either scope.
///
/// Setting only notes a value; synchronising writes what was noted, in one step against other
/// threads and processes. What could not be written is forgotten. Reading sees what was noted, and
/// else what any process wrote last. Any thread may call these.
#pragma once

#include <KxQts/corefoundation/base.h>

/// The scope of the machine, with `kCFPreferencesCurrentHost`.
KXQTS_C_API const CFStringRef kCFPreferencesAnyUser;
/// The scope of the user, with `kCFPreferencesAnyHost`.
KXQTS_C_API const CFStringRef kCFPreferencesCurrentUser;
/// The host that goes with the scope of the user.
KXQTS_C_API const CFStringRef kCFPreferencesAnyHost;
/// The host that goes with the scope of the machine.
KXQTS_C_API const CFStringRef kCFPreferencesCurrentHost;

/// A value that the caller owns; null when there is none or the domain cannot be read.
KXQTS_C_API CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                                     CFStringRef user, CFStringRef host);

/// The names of all values that are stored, as an array of strings; null for none.
KXQTS_C_API CFArrayRef CFPreferencesCopyKeyList(CFStringRef applicationID, CFStringRef user,
                                                CFStringRef host);

/// Notes a value. \param value Null removes.
KXQTS_C_API void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value,
                                       CFStringRef applicationID, CFStringRef user,
                                       CFStringRef host);

/// Writes what was noted, and reads the domain anew.
/// \return False when it cannot be read or written; its file is as it was then.
KXQTS_C_API Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user,
                                             CFStringRef host);

/// \name Application values
/// As above for the current user only, or for a domain named by an absolute path.
/// @{

/// See `CFPreferencesCopyValue`.
KXQTS_C_API CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
/// See `CFPreferencesSetValue`.
KXQTS_C_API void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value,
                                          CFStringRef applicationID);
/// See `CFPreferencesSynchronize`.
KXQTS_C_API Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);
/// @}
