/// \file
/// Profiles in Qt's types. `GetPrivateProfileStringA` and its siblings stand on these functions.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/profiles.h>

#include <QString>

/// Reads a value of a profile, see \ref GetPrivateProfileStringA.
///
/// \param appId The domain that the profile is kept in; empty is the usual one.
/// \param section,key Either empty: the names of all entries of the section, or of the profile, one
/// behind the other without anything between them.
/// \param defaultValue The result, as it stands, when there is no such section, key or profile.
/// \param result The value without white space at its ends.
/// \param fileName Only the last component counts.
/// \return The length of \a result.
KXQTS_EXPORT int getPrivateProfileString(const QString& appId, const QString& section,
                                         const QString& key, const QString& defaultValue,
                                         QString& result, const QString& fileName);

/// Writes a value of a profile, see \ref WritePrivateProfileStringA.
///
/// \param section Empty: the value is kept beside the sections.
/// \param key Empty: the section is removed with all in it. With an empty section as well nothing
/// is done, and that is a success.
/// \param value Empty: the value is removed.
/// \return False with a registry error in `errno`: 1010 for what is not there to be removed and for
/// a store that cannot be written. A success leaves `errno` alone.
KXQTS_EXPORT bool writePrivateProfileString(const QString& appId, const QString& section,
                                            const QString& key, const QString& value,
                                            const QString& fileName);
