/// \file
/// The registry calls, in Qt's types.
///
/// Keys and values are kept in preference domains, see \ref Korvex::WPrefs for how they lie there.
/// Every call works on the domains of this machine and this user; none asks a daemon.
///
/// Results are 0, or one of 6 (no such handle), 160 (no place for the result) and 1010 for
/// everything else: a key or value that is not there, the end of an enumeration, a store that
/// cannot be read or written. `errno` is left alone.
///
/// `HKEY_CURRENT_USER` is the current user's scope of the domain "com.korvex.registry".
/// `HKEY_LOCAL_MACHINE` is the machine's scope of the domain that \a appId names, or of
/// "com.korvex.registry" when that is empty. All other predefined keys give 1010.
///
/// Any thread may use a key that another one opened, and several may at once.
#pragma once

#include <KxQts/export.h>
#include <KxQts/registry/prefs.h>
#include <KxQts/winapi/registry.h>

/// Opens a key that exists.
///
/// \param hKey `HKEY_LOCAL_MACHINE`, `HKEY_CURRENT_USER`, or an open key.
/// \param subKey A path, its names between slashes. Empty: the root, a handle that only serves to
/// be told from null; the library keeps it.
/// \param phkResult Receives the key, which the caller closes with `RegCloseKey`; left alone when
/// there is none.
/// \return 0. 160 for a null \a phkResult; 1010 when there is no such key. **Below an open key the
/// result is 1010 in any case**: whether there is a key is told by \a phkResult having been
/// written, so set it to null before the call.
/// \par Ignored
/// options, samDesired.
KXQTS_EXPORT unsigned regOpenKeyEx(const QString& appId, void* hKey, const QString& subKey,
                                   unsigned options, unsigned samDesired, void** phkResult);

/// Opens a key whether it exists or not. A new one comes into being with its first value.
///
/// \param disposition Receives 1 for a new key and 2 for one that exists; may be null. Left alone
/// for an empty \a subKey.
/// \return As \ref regOpenKeyEx, with 1010 below an open key too.
/// \par Ignored
/// reserved, keyClass, options, samDesired, security.
KXQTS_EXPORT unsigned regCreateKeyEx(const QString& appId, void* hKey, const QString& subKey,
                                     unsigned reserved, const QString& keyClass, unsigned options,
                                     unsigned samDesired, _SECURITY_ATTRIBUTES* security,
                                     void** phkResult, unsigned* disposition);

/// Reads a value of an open key, see \ref Korvex::WPrefs::queryValue. Predefined keys are refused.
/// \param reserved Ignored.
KXQTS_EXPORT unsigned regQueryValueEx(void* hKey, const QString& name, unsigned* reserved,
                                      unsigned* type, QByteArray& data);

/// Writes a value of an open key, see \ref Korvex::WPrefs::setValue. Predefined keys are refused.
/// \param reserved Ignored.
KXQTS_EXPORT unsigned regSetValueEx(void* hKey, const QString& name, unsigned reserved,
                                    unsigned type, const QByteArray& data);

/// Removes a value of an open key. Predefined keys are refused.
KXQTS_EXPORT unsigned regDeleteValue(void* hKey, const QString& name);

/// Removes a key with everything in it. \param hKey As for \ref regOpenKeyEx.
KXQTS_EXPORT unsigned regDeleteKey(const QString& appId, void* hKey, const QString& subKey);

/// Tells the name of one of a key's entries: sub-keys and values alike.
/// \param hKey As for \ref regOpenKeyEx; the root keys themselves have nothing to enumerate.
/// \param index From 0 on; 1010 is where the entries end.
KXQTS_EXPORT unsigned regEnumKey(const QString& appId, void* hKey, unsigned index, QString& name);
