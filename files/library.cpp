#include <KxQts/files/library.h>

#include "files/bundle.h"
#include "files/knowndirectories.h"
#include "files/loadingturn.h"
#include "handles/addresses.h"
#include "handles/disposal.h"
#include "platform/imageloader.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>

namespace Korvex {

const QString WLibrary::sWLibraryObjName = QStringLiteral("WLibrary");
const QString WLibrary::sWLibraryDefPath = QLatin1String(systemDirectory);
constinit Lock WLibrary::sCritSect;
HandleRegistry<WLibrary> WLibrary::sLibList;

namespace {

QString pathFor(const QString& name) {
    const QString path = isBundle(name) ? bundleExecutable(name) : name;
    // No separator between the two: callers' installed names rely on the plain concatenation.
    return path.contains(u'/') ? path : WLibrary::sWLibraryDefPath + path;
}

} // namespace

WLibrary::WLibrary(const QString& path) : QLibrary(path), askedFor(path) {
    setObjectName(sWLibraryObjName);
}

WLibrary::~WLibrary() {
    // Usually out of the registry already; not so an object that a client deletes itself.
    const LockGuard guard(sCritSect);
    sLibList.remove(this);
}

WLibrary* WLibrary::getLibrary(const QString& name, bool load) {
    try {
        const QString path = pathFor(name);
        if (WLibrary* known = addReference(path))
            return known;
        return load ? loadAt(path) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

WLibrary* WLibrary::addReference(const QString& path) {
    const auto isAtPath = [&path](const WLibrary* library) {
        return library->askedFor == path || library->fileName() == path;
    };
    const LockGuard guard(sCritSect);
    const auto found = std::find_if(sLibList.begin(), sLibList.end(), isAtPath);
    if (found == sLibList.end())
        return nullptr;
    ++(*found)->refCount;
    return *found;
}

WLibrary* WLibrary::loadAt(const QString& path) {
    LoadingTurn turn(path);
    if (WLibrary* known = addReference(path))
        return known;
    // A finaliser cannot call back to life the library that it is part of.
    std::unique_ptr<WLibrary> library(turn.isUnloading() ? nullptr : makeHandle<WLibrary>(path));
    if (!library)
        return nullptr;
    if (library->load())
        return enter(library.release(), turn);
    const int loadersError = errno;
    library.reset();
    errno = loadersError;
    return nullptr;
}

WLibrary* WLibrary::enter(WLibrary* loaded, LoadingTurn& turn) {
    if (WLibrary* earlier = addReference(loaded->askedFor)) {
        // An initialiser of the library has loaded it itself meanwhile. Two loadings side by side
        // leave the system with a reference more than the library object knows of.
        unloadAndDelete(loaded, turn);
        ImageLoader::dropExtraReference(QFile::encodeName(earlier->fileName()).constData());
        return earlier;
    }
    try {
        const LockGuard guard(sCritSect);
        sLibList.append(loaded);
        return loaded;
    } catch (const std::bad_alloc&) {
        unloadAndDelete(loaded, turn);
        return nullptr;
    }
}

WLibrary* WLibrary::getWLibraryObject(void* handle) {
    if (!HandleAddresses::mayBeObject(handle))
        return nullptr;
    auto* object = static_cast<QObject*>(handle);
    return object->objectName() == sWLibraryObjName ? static_cast<WLibrary*>(object) : nullptr;
}

bool WLibrary::findLibrary(void* handle, QString& fileName) {
    const LockGuard guard(sCritSect);
    const WLibrary* library = getWLibraryObject(handle);
    if (!isLive(sLibList, library))
        return false;
    fileName = library->fileName();
    return true;
}

bool WLibrary::freeLibrary(void* handle) {
    QString path;
    {
        const LockGuard guard(sCritSect);
        WLibrary* library = getWLibraryObject(handle);
        if (!isLive(sLibList, library))
            return false;
        if (library->refCount > 1) {
            --library->refCount;
            return true;
        }
        path = library->askedFor;
    }
    try {
        return freeInTurn(handle, path);
    } catch (const std::bad_alloc&) {
        // Giving a library up never fails: without the memory to do it safely, it stays loaded.
        return true;
    }
}

// The turn comes before the library is taken out of the list: as long as its code is on the way
// out, Qt would count a new loading of it as none.
bool WLibrary::freeInTurn(void* handle, const QString& path) {
    LoadingTurn turn(path);
    WLibrary* library = nullptr;
    {
        const LockGuard guard(sCritSect);
        library = getWLibraryObject(handle);
        if (!isLive(sLibList, library))
            return false;
        if (--library->refCount != 0)
            return true;
        sLibList.remove(library);
    }
    unloadAndDelete(library, turn);
    return true;
}

void WLibrary::unloadAndDelete(WLibrary* library, LoadingTurn& turn) {
    turn.startUnloading();
    try {
        library->unload();
    } catch (const std::bad_alloc&) {
        // Its code stays, then; it is nobody's library any more all the same.
    }
    const LockGuard guard(sCritSect);
    delete library;
}

} // namespace Korvex

HMODULE loadLibrary(const QString& name) {
    return Korvex::WLibrary::getLibrary(name, true);
}
