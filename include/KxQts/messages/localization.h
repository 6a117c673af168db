/// \file
/// Texts in the user's language. They come from a resource library, which is loaded at the first
/// lookup.
#pragma once

#include <KxQts/export.h>

#include <QString>

namespace Korvex {

/// The texts of a resource library.
///
/// A resource library implements this class and exports, with C linkage, a function `getZRRes`
/// without parameters that returns a pointer to its object. The object stays the library's own; it
/// must live as long as the library is loaded, and any thread may ask it. While `getZRRes` runs
/// there are no texts yet: its own lookups give 2, and those of other threads wait for it.
class KXQTS_EXPORT ITextResource {
public:
    /// Gives the text of an index.
    ///
    /// \param out Receives the text.
    /// \param language 0 English, 1 French, 2 German.
    /// \return What the lookup returns; its values are the resource library's own, but 2 also says
    /// that there is no resource library.
    virtual int getText(int index, QString& out, int language) = 0;

protected:
    ~ITextResource() = default;
};

} // namespace Korvex

/// Looks a text up in the language of the system: French, German, or English for all others.
///
/// The resource library is loaded at the first lookup that finds it and kept. It is the file that
/// \ref setTranslationFileName named, or else "libZrRes.dylib" in the system directory.
/// \param index The text. Every value is handed on, negative ones too.
/// \param out Receives the text.
/// \param source Ignored: texts are found by index only.
/// \return What the resource library returns; 2, with \a out left alone, when it cannot be loaded
/// or has no texts to give. The next lookup tries again then. Any thread may call. `errno` means
/// nothing afterwards.
KXQTS_EXPORT int queryTranslate(int index, QString& out, const QString* source);

/// Names the resource library. Has no effect any more once one is loaded.
///
/// \param path A file that can be read; its Latin-1 form is what is tried.
/// \return False, with the name left as it was, when the file cannot be opened.
KXQTS_EXPORT bool setTranslationFileName(const QString& path);

/// Clears \a out and looks a text up, see \ref queryTranslate.
KXQTS_EXPORT int getLocalizedStringByStringID(int index, QString& out);

/// Unloads the resource library; the next lookup loads it again. Runs by itself when this library
/// is unloaded. No other thread may be looking a text up.
KXQTS_EXPORT void staticDestructor();
