#include "files/filehandle.h"

#include "files/handlefile.h"
#include "handles/addresses.h"

namespace Korvex {

const QString fileTag = QStringLiteral("QFile");

QFile* fileBehind(HANDLE handle) {
    using HandleAddresses::Use;
    const Use use = HandleAddresses::useOf(handle);
    if ((use != Use::Object && use != Use::Unknown) || !HandleAddresses::mayBeObject(handle))
        return nullptr;
    auto* object = static_cast<QObject*>(handle);
    return object->objectName() == fileTag ? static_cast<QFile*>(object) : nullptr;
}

qint64 readFrom(QFile& file, char* buffer, qint64 count) {
    if (!file.isReadable()) // Qt would print a warning
        return -1;
    if (auto* own = dynamic_cast<HandleFile*>(&file))
        return own->readHere(buffer, count);
    return file.read(buffer, count);
}

BOOL closeFile(HANDLE handle) {
    auto* file = static_cast<QFile*>(handle);
    file->close();
    // A file object that the client made goes back to where the client got it: only here can its
    // address be remembered as closed.
    if (HandleAddresses::useOf(handle) == HandleAddresses::Use::Unknown)
        HandleAddresses::rememberClosed(handle);
    delete file;
    return TRUE;
}

} // namespace Korvex
