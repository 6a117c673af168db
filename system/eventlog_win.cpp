// The names of server and source, the type of an event and the user identifier are ignored on
// purpose.

#include <KxQts/system/eventlog.h>
#include <KxQts/winapi/eventlog.h>

#include "support/wintext.h"

using Korvex::windowsText;

namespace {

/// An event is reported by the same steps with either kind of text.
template <class Character>
BOOL report(HANDLE eventLog, WORD type, WORD category, DWORD eventId, PSID userSid, WORD count,
            DWORD dataSize, const Character* const* texts, const void* rawData) {
    if (eventLog != registerEventSource())
        return FALSE;
    QStringList strings;
    for (WORD i = 0; texts && i < count; ++i)
        strings.append(windowsText(texts[i]));
    QByteArray data;
    if (rawData && dataSize != 0)
        data = QByteArray(static_cast<const char*>(rawData), static_cast<qsizetype>(dataSize));
    return reportEvent(eventLog, type, category, eventId, userSid, strings, data) ? TRUE : FALSE;
}

} // namespace

HANDLE RegisterEventSourceA(LPCSTR, LPCSTR) {
    return registerEventSource();
}

HANDLE RegisterEventSourceW(LPCWSTR, LPCWSTR) {
    return registerEventSource();
}

BOOL DeregisterEventSource(HANDLE) {
    return TRUE;
}

BOOL ReportEventA(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID, PSID lpUserSid,
                  WORD wNumStrings, DWORD dwDataSize, LPCSTR* lpStrings, LPVOID lpRawData) {
    return report(hEventLog, wType, wCategory, dwEventID, lpUserSid, wNumStrings, dwDataSize,
                  lpStrings, lpRawData);
}

BOOL ReportEventW(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID, PSID lpUserSid,
                  WORD wNumStrings, DWORD dwDataSize, LPCWSTR* lpStrings, LPVOID lpRawData) {
    return report(hEventLog, wType, wCategory, dwEventID, lpUserSid, wNumStrings, dwDataSize,
                  lpStrings, lpRawData);
}
