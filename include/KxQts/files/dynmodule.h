/// \file
/// A plain loader of code, for programs that open a library or a bundle's code without Qt.
#pragma once

#include <KxQts/export.h>

namespace Korvex {

/// Code loaded at run time: one image at a time.
///
/// Nothing is freed when the object goes: addresses that were looked up stay good. An object serves
/// one thread at a time.
/// \par Differs from the other system that this class is known from
/// There, bundles are state 2 and dynamic libraries state 1. Here every loadable file is state 2,
/// and state 1 is what is marked never to be unloaded.
class KXQTS_EXPORT DynModule {
public:
    /// Loads a file, once what was loaded before has been freed. What cannot be freed is forgotten
    /// as soon as the new file is loaded, and kept when it is not.
    ///
    /// \param path A path in the file system's bytes, relative ones from the current directory; a
    /// bare name is looked for there, then where the system keeps libraries. All its symbols are
    /// bound at once and serve nobody else. Null is a file that cannot be loaded.
    /// \return The new state.
    int Load(const char* path);

    /// Looks a C symbol up in what is loaded, or in a library that it needs.
    ///
    /// \param name The name as it is written in C, of any length.
    /// \return The symbol's address; null when there is none, nothing is loaded or \a name is null.
    void* GetProcAddress(const char* name);

    /// Unloads what is loaded. \return False when nothing is, or when it stays loaded for good.
    bool Free();

    int state = 0;                   ///< 0 nothing is loaded; 1 an image that stays; 2 a module
    void* image = nullptr;           ///< What is loaded in state 1
    void* objectFileImage = nullptr; ///< The opened file in state 2
    void* module = nullptr; ///< The module; in state 1 known from the first symbol that was found
};

} // namespace Korvex
