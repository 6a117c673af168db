// Security attributes are ignored on purpose. Whether a mutex was made or reused is told by errno
// alone.

#include <KxQts/handles/mutex.h>
#include <KxQts/winapi/mutexes.h>

#include "platform/withoutmemory.h"
#include "support/wintext.h"

using Korvex::windowsText;
using Korvex::WMutex;

HANDLE createMutex(bool initialOwner, const QString& name) {
    return Korvex::withoutMemory(nullptr, [&] {
        WMutex* mutex = nullptr;
        // The bytes up to the first zero: names with one inside are cut there.
        WMutex::get(initialOwner, QString::fromLatin1(name.toLatin1().constData()), &mutex);
        return mutex;
    });
}

HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES, BOOL bInitialOwner, LPCSTR lpName) {
    return Korvex::withoutMemory(
        nullptr, [&] { return createMutex(bInitialOwner != FALSE, windowsText(lpName)); });
}

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL bInitialOwner, LPCWSTR lpName) {
    return Korvex::withoutMemory(
        nullptr, [&] { return createMutex(bInitialOwner != FALSE, windowsText(lpName)); });
}

BOOL ReleaseMutex(HANDLE h) {
    return WMutex::free(static_cast<WMutex*>(h)) ? TRUE : FALSE;
}
