/// \file
/// The preference store: registry keys and their values as property lists.
#pragma once

#include <KxQts/corefoundation.h>
#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>

#include <QByteArray>
#include <QString>

#include <atomic>

namespace Korvex {

class KXQTS_LOCKABLE Lock;
struct PreferenceDomain;

/// A registry key: a preference domain, a path inside it, and a scope.
///
/// A path is a walk through dictionaries (and, when reading, arrays, by index). Its names stand
/// between slashes; what begins with a slash is one name, that slash and all others included. The
/// first name is that of a top-level value of the domain: the value "V" of the key "A/B" lies in
/// the dictionary "B" in the dictionary "A".
///
/// Reading looks into single values as if they were what was asked for: where a path leads to a
/// number, text or other single value, that is what is found, whatever follows in the path. Writing
/// replaces everything on the path that is no dictionary, arrays included, by an empty one.
///
/// Arguments called \a user say which scope of the key's domain is meant:
/// `kCFPreferencesAnyUser` or `kCFPreferencesCurrentUser`; any other has no store. A read sees what
/// any process wrote last; a write that returned true is stored, and is one step against other
/// threads and processes. Operations report nothing but their result: `errno` is left alone. A key
/// that could not be synchronised when it was made fails in everything.
/// \par Threads
/// Any thread may use any key, but initialising one is for its owner alone.
class KXQTS_EXPORT WPrefs : public HandleStorage {
public:
    /// Makes a key that is on no list, as the caller's own.
    /// \param appId The domain; null means "com.korvex.registry".
    /// \param keyPath Null means "", the root of the domain.
    /// \param anyUser The scope: the machine's or else the current user's.
    WPrefs(const QString* appId, const QString* keyPath, bool anyUser);
    ~WPrefs();

    WPrefs(const WPrefs&) = delete;
    WPrefs& operator=(const WPrefs&) = delete;

    /// Makes it another key. \return Whether its domain could be synchronised.
    bool initialize(const QString& appId, const QString* keyPath, bool anyUser);

    /// Opens a key of the machine's scope.
    /// \param appId Empty means "com.korvex.registry".
    /// \param keyPath Empty: the caller owns the key then, it is not put on the list of open keys.
    /// \param openOnly Whether a key that does not exist is refused. One that does is a value of
    /// any type. Nothing is written for a new key: it comes into being with its first value.
    /// \param disposition Receives 1 for a new key and 2 for an existing one; may be null. It is
    /// left alone for an empty path and on failure.
    /// \return An open key, until \ref disposeKey; null on failure.
    static WPrefs* initKey(const QString& appId, const QString& keyPath, bool openOnly,
                           unsigned* disposition);

    /// Opens a key below another one.
    /// \param parent The key of whose domain, scope and path (with a slash behind it, always) the
    /// new one is made. Null: \a subKey is a path of the default domain.
    /// \param anyUser The scope without a parent; ignored with one.
    static WPrefs* initKey(WPrefs* parent, const QString& subKey, bool anyUser, bool openOnly,
                           unsigned* disposition);

    /// The key, if it is on the list of open keys; else null. Any pointer may be asked for.
    static WPrefs* getExistingKey(void* key);

    /// Takes a key from the list of open keys and frees it. \return Whether it was there.
    static bool disposeKey(void* key);

    /// Reads a value of any type.
    /// \param typeId What it must be, or all bits set for anything. A dictionary or array is given
    /// for all bits set only, not for its own type. It is not looked at below the first name.
    /// \return An object that the caller releases; null for none.
    const void* getObjectOfType(const QString& path, unsigned long typeId, const __CFString* user);

    /// Writes a value. \param value Any property-list object; null removes. Dictionaries on the way
    /// are made for removing too.
    bool putObject(const QString& path, const void* value, const __CFString* user);

    /// Reads a value of the key by its name, as a registry type and bytes.
    /// \param type Receives 4 for a number, whose 4 bytes in host order are \a data; 1 for text,
    /// whose UTF-16 code units in host order without a terminator are \a data; 3 for data. May be
    /// null.
    /// \return False with \a data empty for other values and numbers beyond 32 bits.
    bool queryValue(const QString& name, unsigned* type, QByteArray& data);

    /// Writes a value of the key by its name.
    /// \param type 1: \a data are UTF-16 code units, an odd byte at the end is dropped; 3: data; 4:
    /// the first 4 bytes of \a data are a number; 11: 8 bytes, which are stored as data. Others are
    /// refused. **The empty name stands for the key itself**: what was in the key is replaced.
    bool setValue(const QString& name, unsigned type, const QByteArray& data);

    /// \name Values of one type, by their path
    /// Reading is false, and leaves \a out alone unless it says otherwise, where there is no value
    /// of the type. A null \a v removes the value.
    /// @{

    /// Reads a text.
    bool getProfileString(const QString& path, const __CFString* user, QString& out);
    /// \param out Is written for every number; false for one beyond 32 bits, of which it has the
    /// low ones.
    bool getProfileInt(const QString& path, const __CFString* user, int& out);
    /// Reads a truth value.
    bool getProfileBool(const QString& path, const __CFString* user, bool& out);
    /// \param out Is emptied first.
    bool getProfileBinary(const QString& path, const __CFString* user, QByteArray& out);
    /// Writes a text.
    bool setProfileString(const QString& path, const __CFString* user, const QString* v);
    /// Writes a number.
    bool setProfileInt(const QString& path, const __CFString* user, int* v);
    /// Writes a truth value.
    bool setProfileBool(const QString& path, const __CFString* user, bool* v);
    /// Writes bytes.
    bool setProfileBinary(const QString& path, const __CFString* user, const QByteArray* v);
    /// @}

    /// Tells one entry of the key's dictionary: its sub-keys and values alike.
    /// \param index From 0 on, in the store's own order, which changes with the dictionary only.
    /// \param type Receives 1 for a string, 2 for a boolean, 3 for data, 4 for a number, 10 for an
    /// array, 11 for a dictionary, and else 0; may be null.
    /// \return False, with \a name empty, when there are not so many and for the root of a domain.
    bool enumKey(unsigned index, QString& name, int* type);

    /// Removes a dictionary below the key. \return False when there is none.
    bool deleteKey(const QString& subKey);

    /// Removes a string, number, boolean or data of the key. \return False when there is none.
    bool deleteValue(const QString& name);

    /// Writes a top-level value of the domain, whatever its name. Null removes.
    bool setSyncProperty(const QString& key, const void* value, const __CFString* user);

    /// Reads a top-level value of the domain. \return An object that the caller releases, or null.
    const void* getSyncProperty(const QString& key, const __CFString* user);

    static Lock sCritSect; ///< Guards the list; its holder may take it again
    static HandleRegistry<WPrefs> sPrefsList KXQTS_GUARDED_BY(sCritSect); ///< The open keys

private:
    friend class OpenKey;

    [[nodiscard]] PreferenceDomain domainOf(const __CFString* user) const;
    [[nodiscard]] QString valuePath(const QString& name) const;
    bool removeIf(const QString& path, unsigned kinds);
    static WPrefs* opened(WPrefs* made, bool openOnly, unsigned* disposition);
    static void dropReference(WPrefs* key);

    const __CFString* platformId = nullptr;
    QString id;
    QString path;
    const __CFString* userScope = nullptr;
    bool isAnyUser = false;
    bool synchronized = false;
    unsigned systemEncoding = 0; // kept for those who look at keys; nothing here reads it
    bool existed = false;        // whether there was a value at the path when the key was made
    std::atomic<int> references{1};
};

/// The path of the file of "com.korvex.registry".
/// \param localDomain Whether the machine's is meant, or else the user's.
/// \return False, with \a out empty, when its folder does not exist or has a path of more than 260
/// bytes. The file need not exist.
KXQTS_EXPORT bool getPreferencesFilePath(bool localDomain, QString& out);

/// Makes a string object of a text's code units, which the caller releases.
KXQTS_EXPORT const __CFString* createCFString(const QString& text);

/// Reads a value inside a dictionary by its path, as `WPrefs::getObjectOfType` does below the
/// first name. \return An object that the caller releases; null for none.
KXQTS_EXPORT const void* getCFDictionaryKeyValue(const __CFDictionary* dictionary,
                                                 const QString& path, unsigned long typeId);

/// The same inside an array: the first name is an index.
KXQTS_EXPORT const void* getCFArrayKeyValue(const __CFArray* array, const QString& path,
                                            unsigned long typeId);

/// Writes a value inside a mutable dictionary by its path, as `WPrefs::putObject` does below the
/// first name. Dictionaries on the way are replaced by copies with the change in them.
/// \param value Null removes.
/// \return False for a null dictionary only, and when there is no memory.
KXQTS_EXPORT bool setCFDictionaryKeyValue(__CFDictionary* dictionary, const QString& path,
                                          const void* value);

} // namespace Korvex

using Korvex::createCFString;
using Korvex::getCFArrayKeyValue;
using Korvex::getCFDictionaryKeyValue;
using Korvex::getPreferencesFilePath;
using Korvex::setCFDictionaryKeyValue;
