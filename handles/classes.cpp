#include "handles/classes.h"

#include "files/filehandle.h"
#include "handles/addresses.h"

#include <KxQts/handles/event.h>

#include <array>

namespace Korvex {

namespace {

BOOL closeEvent(HANDLE handle) {
    return WEvent::dispose(static_cast<WEvent*>(handle));
}

DWORD waitForEvent(HANDLE handle, DWORD ms) {
    return WEvent::wait(static_cast<WEvent*>(handle), ms);
}

const std::array table{
    HandleClass{WEvent::sObjName, closeEvent, waitForEvent},
    HandleClass{fileTag, closeFile, nullptr},
};

} // namespace

std::span<const HandleClass> handleClasses() {
    return table;
}

const HandleClass* classOf(HANDLE handle) {
    if (!HandleAddresses::mayBeObject(handle))
        return nullptr;
    const QString tag = static_cast<const QObject*>(handle)->objectName();
    for (const HandleClass& candidate : table) {
        if (candidate.tag == tag)
            return &candidate;
    }
    return nullptr;
}

} // namespace Korvex
