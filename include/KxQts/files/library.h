/// \file
/// The libraries behind module handles.
#pragma once

#include <KxQts/export.h>
#include <KxQts/handles/registry.h>
#include <KxQts/handles/storage.h>
#include <KxQts/threadsafety.h>
#include <KxQts/winapi/modules.h>

#include <QLibrary>
#include <QString>

#include <atomic>

namespace Korvex {

class LoadingTurn;
class KXQTS_LOCKABLE Lock;

/// A library that was loaded at run time. A module handle is a pointer to one.
///
/// Each path is loaded once, whichever threads ask for it. Initialisers and finalisers of a library
/// may use every call below: the class lock is never held while they run. Threads that want a path
/// which another thread is just loading or unloading wait until it is done; nothing else waits.
class KXQTS_EXPORT WLibrary : public QLibrary, public HandleStorage {
public:
    /// Makes an object that is neither loaded nor registered; \ref getLibrary does both.
    explicit WLibrary(const QString& path);
    ~WLibrary() override;

    WLibrary(const WLibrary&) = delete;
    WLibrary& operator=(const WLibrary&) = delete;

    /// Finds a loaded library, or loads one.
    ///
    /// \param name A path. A bundle stands for the executable in it. A text without "/" is put
    /// right behind the default directory's, with no separator between the two. A path that is no
    /// file is tried with the prefix and suffix of this system's libraries too.
    /// \param load Whether a library that is not loaded is to be loaded.
    /// \return The library, with one more reference, which the caller gives up with
    /// \ref freeLibrary. Null, with `errno` left alone, when it is not loaded and not to be; null
    /// with `errno` as left by the loader when it cannot be loaded.
    static WLibrary* getLibrary(const QString& name, bool load);

    /// The library behind a handle; null when the handle is anything else.
    static WLibrary* getWLibraryObject(void* handle);

    /// The file name of a registered library. \return False, with \a fileName left alone, for what
    /// is none.
    static bool findLibrary(void* handle, QString& fileName);

    /// Gives up one reference, and unloads the library with the last one. \return False for what is
    /// no registered library.
    static bool freeLibrary(void* handle);

    static const QString sWLibraryObjName; ///< The type tag, "WLibrary"
    static const QString sWLibraryDefPath; ///< The default directory, without a separator behind it
    static Lock sCritSect;                 ///< The class lock
    static HandleRegistry<WLibrary> sLibList KXQTS_GUARDED_BY(sCritSect); ///< All loaded libraries

    std::atomic<int> refCount{1};

private:
    KXQTS_INTERNAL static WLibrary* addReference(const QString& path);
    KXQTS_INTERNAL static WLibrary* loadAt(const QString& path);
    KXQTS_INTERNAL static WLibrary* enter(WLibrary* loaded, LoadingTurn& turn);
    KXQTS_INTERNAL static bool freeInTurn(void* handle, const QString& path);
    KXQTS_INTERNAL static void unloadAndDelete(WLibrary* library, LoadingTurn& turn);

    // The text that the library was asked for by. The loader may have found another file by it.
    const QString askedFor;
};

} // namespace Korvex

/// Loads a library, or counts a reference to it when it is loaded already; see
/// \ref Korvex::WLibrary::getLibrary.
///
/// \return The module, which the caller gives back with `FreeLibrary`; null, with `errno` as left
/// by the loader, when it cannot be loaded.
KXQTS_EXPORT HMODULE loadLibrary(const QString& name);
