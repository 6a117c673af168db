#include <KxQts/system/eventlog.h>

#include "handles/addresses.h"
#include "system/eventlines.h"

#include <KxQts/errors.h>

#include <cerrno>

namespace Korvex {

QString eventLabel(unsigned eventId, unsigned short category, const char* section) {
    return QString::asprintf("KXEVT%d:CAT%d %s", static_cast<int>(eventId), category, section);
}

QByteArray eventDataDump(const QByteArray& data) {
    constexpr qsizetype bytesInLine = 16;
    constexpr qsizetype charactersOfByte = 3;
    const qsizetype lines = (data.size() + bytesInLine - 1) / bytesInLine;
    QByteArray text;
    text.reserve(data.size() * charactersOfByte + lines);
    for (qsizetype at = 0; at < data.size(); at += bytesInLine)
        text += data.mid(at, bytesInLine).toHex(' ').toUpper() + " \n";
    return text;
}

} // namespace Korvex

void* registerEventSource() {
    return reinterpret_cast<void*>(Korvex::HandleAddresses::eventSource);
}

bool reportEvent(void*, unsigned short, unsigned short category, unsigned int eventId, void*,
                 const QStringList& strings, const QByteArray& data) {
    if (strings.isEmpty()) {
        errno = Korvex::Error::InvalidParameter;
        return false;
    }
    // This is where a system log would receive the lines; callers rely on the results alone.
    const QString description = Korvex::eventLabel(eventId, category, "desc");
    // Callers expect that an event that is a description only was not logged.
    if (data.isEmpty())
        return false;
    const QString label = Korvex::eventLabel(eventId, category, "data");
    const QByteArray dump = Korvex::eventDataDump(data);
    return true;
}
