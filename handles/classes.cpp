#include "handles/classes.h"

#include "files/filehandle.h"
#include "handles/disposal.h"
#include "system/processcare.h"

#include <KxQts/handles/event.h>
#include <KxQts/handles/mutex.h>
#include <KxQts/handles/thread.h>
#include <KxQts/winapi/handles.h>

#include <algorithm>
#include <array>

namespace Korvex {

using HandleAddresses::Use;

namespace {

const QString processTag = QStringLiteral("QProcess");

} // namespace

/// The handle classes, in the order in which a handle's tag is compared with theirs.
struct HandleClassTable {
    template <class T>
    static bool isLive(HANDLE handle) KXQTS_UNCHECKED_LOCKING {
        return Korvex::isLive(T::sObjectList, static_cast<const T*>(handle));
    }

    static bool isLiveThread(HANDLE handle) KXQTS_UNCHECKED_LOCKING {
        return Korvex::isLive(WThread::sThreadList, static_cast<const WThread*>(handle));
    }

    template <class T>
    static BOOL close(HANDLE handle) {
        return T::dispose(static_cast<T*>(handle));
    }

    static DWORD waitForEvent(HANDLE handle, DWORD ms, HeldLock& held) {
        auto* event = static_cast<WEvent*>(handle);
        return held ? WEvent::waitForLive(*event, ms, held) : WEvent::wait(event, ms);
    }

    static bool isKnownProcess(HANDLE handle) KXQTS_UNCHECKED_LOCKING {
        return ProcessCare::isKnown(static_cast<const WProcess*>(handle));
    }

    static BOOL closeProcess(HANDLE handle) {
        return ProcessCare::close(static_cast<WProcess*>(handle));
    }

    // The wait is for objects of this tag, which the library's own process handles do not have.
    static DWORD waitForProcess(HANDLE handle, DWORD ms, HeldLock&) {
        return WProcess::wait(static_cast<WProcess*>(handle), ms) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }

    static DWORD waitForMutex(HANDLE handle, DWORD ms, HeldLock& held) {
        auto* mutex = static_cast<WMutex*>(handle);
        const bool taken = held ? WMutex::waitForLive(*mutex, ms, held) : WMutex::wait(mutex, ms);
        return taken ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }

    static const HandleClass* withTag(const QString& tag);
    static const HandleClass* withUse(Use use);

    static const std::array<HandleClass, 6> rows;
};

constinit const std::array<HandleClass, 6> HandleClassTable::rows{{
    {WProcess::sObjName, Use::Process, &WProcess::sCritSect, isKnownProcess, closeProcess, nullptr},
    {WThread::sObjName, Use::Thread, &WThread::sCritSect, isLiveThread, close<WThread>, nullptr},
    {processTag, Use::Object, nullptr, nullptr, nullptr, waitForProcess},
    {WEvent::sObjName, Use::Event, &WEvent::sCritSect, isLive<WEvent>, close<WEvent>, waitForEvent},
    {WMutex::sObjName, Use::Mutex, &WMutex::sCritSect, isLive<WMutex>, close<WMutex>, waitForMutex},
    {fileTag, Use::Object, nullptr, nullptr, closeFile, nullptr},
}};

const HandleClass* HandleClassTable::withTag(const QString& tag) {
    const auto* row = std::find_if(rows.begin(), rows.end(),
                                   [&](const HandleClass& known) { return known.tag == tag; });
    return row == rows.end() ? nullptr : row;
}

// Every call for a handle comes through here, so nothing is searched.
const HandleClass* HandleClassTable::withUse(Use use) {
    static const auto rowsByUse = [] {
        std::array<const HandleClass*, HandleAddresses::useCount> found{};
        for (const HandleClass& row : rows) {
            if (row.lock)
                found.at(static_cast<std::size_t>(row.use)) = &row;
        }
        return found;
    }();
    return rowsByUse[static_cast<std::size_t>(use)];
}

TaggedHandle::TaggedHandle(HANDLE toTell) KXQTS_UNCHECKED_LOCKING {
    // Asked once: what stands there may be freed at any moment until the lock is held.
    const HandleClass* madeAs = HandleClassTable::withUse(HandleAddresses::useOf(toTell));
    if (!madeAs && !HandleAddresses::mayBeObject(toTell))
        return;
    if (madeAs) {
        held.emplace(*madeAs->lock, Terminably::Yes);
        if (!madeAs->isLive(toTell))
            return;
    }
    const QString tag = static_cast<const QObject*>(toTell)->objectName();
    found = madeAs && madeAs->tag == tag ? madeAs : HandleClassTable::withTag(tag);
    if (found != madeAs)
        held.reset();
}

} // namespace Korvex
