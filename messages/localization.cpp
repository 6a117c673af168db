#include <KxQts/messages/localization.h>

#include "platform/lock.h"

#include <KxQts/errors.h>
#include <KxQts/files/knowndirectories.h>
#include <KxQts/files/library.h>

#include <QLocale>

#include <atomic>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

using Korvex::ITextResource;
using Korvex::Lock;
using Korvex::LockGuard;

namespace {

using EntryPoint = ITextResource* (*)();

constinit Lock resourceLock;
constinit QString g_TranslationFile KXQTS_GUARDED_BY(resourceLock);
HMODULE g_hZrRes KXQTS_GUARDED_BY(resourceLock) = nullptr;
constinit std::atomic<ITextResource*> g_pZrRes{nullptr};
bool isEntered KXQTS_GUARDED_BY(resourceLock) = false;

/// Frees the resource library when this one is unloaded.
struct UnloadAtTheEnd {
    ~UnloadAtTheEnd() { staticDestructor(); }
};
const UnloadAtTheEnd unloadAtTheEnd;

QString translationFile() {
    const LockGuard guard(resourceLock);
    if (g_TranslationFile.isEmpty()) {
        getSystemDirectory(g_TranslationFile);
        g_TranslationFile += QLatin1String("/libZrRes") + QLatin1String(".dylib");
    }
    return g_TranslationFile;
}

EntryPoint entryPointOf(HMODULE library) {
    return reinterpret_cast<EntryPoint>(
        reinterpret_cast<void*>(GetProcAddress(library, "getZRRes")));
}

/// Sets a flag for a scope.
class Flagged {
public:
    explicit Flagged(bool& toSet) : flag(toSet) { flag = true; }
    ~Flagged() { flag = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& flag;
};

/// Makes a library the one that texts come from, unless another thread has been faster.
/// \return Whether the library is in use now.
bool use(HMODULE library, EntryPoint entry) {
    const LockGuard guard(resourceLock);
    // A lookup that the entry point makes itself would begin all over again, without end.
    if (g_pZrRes || isEntered)
        return false;
    const Flagged meanwhile(isEntered);
    ITextResource* resource = entry();
    if (resource)
        g_hZrRes = library;
    g_pZrRes = resource;
    return resource != nullptr;
}

// Nothing is held while the library is loaded: its initialisers may look texts up themselves, or
// wait for threads that do.
ITextResource* loadedResource() {
    if (ITextResource* resource = g_pZrRes)
        return resource;
    HMODULE library = loadLibrary(translationFile());
    if (!library)
        return nullptr;
    const EntryPoint entry = entryPointOf(library);
    if (!entry || !use(library, entry))
        FreeLibrary(library);
    return g_pZrRes;
}

int systemLanguage() {
    enum Language { English, French, German };
    static const QString kLangEnglish = QStringLiteral("English");
    static const QString kLangFrench = QStringLiteral("French");
    static const QString kLangGerman = QStringLiteral("German");
    const QString name = QLocale::languageToString(QLocale::system().language());
    if (name == kLangFrench)
        return French;
    return name == kLangGerman ? German : English;
}

} // namespace

int queryTranslate(int index, QString& out, const QString*) {
    ITextResource* resource = loadedResource();
    return resource ? resource->getText(index, out, systemLanguage()) : Korvex::Error::NotFound;
}

bool setTranslationFileName(const QString& path) {
    const int file = open(path.toLatin1().constData(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
    if (file < 0)
        return false;
    close(file);
    const LockGuard guard(resourceLock);
    g_TranslationFile = path;
    return true;
}

int getLocalizedStringByStringID(int index, QString& out) {
    out = QString();
    return queryTranslate(index, out, nullptr);
}

void staticDestructor() {
    HMODULE library = nullptr;
    {
        const LockGuard guard(resourceLock);
        g_pZrRes = nullptr;
        library = std::exchange(g_hZrRes, nullptr);
    }
    if (library)
        FreeLibrary(library);
}
