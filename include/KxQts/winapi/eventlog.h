/// \file
/// The event log: events are checked, and go nowhere.
///
/// Sources are not real: every registration gives the same handle, and nothing is kept of it.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#define EVENTLOG_SUCCESS 0x0000u
#define EVENTLOG_ERROR_TYPE 0x0001u
#define EVENTLOG_WARNING_TYPE 0x0002u
#define EVENTLOG_INFORMATION_TYPE 0x0004u
#define EVENTLOG_AUDIT_SUCCESS 0x0008u
#define EVENTLOG_AUDIT_FAILURE 0x0010u

/// Gives the handle of the event log. Both names are ignored and may be null.
/// \return 0x5A5A5A50, always. It is no object: `CloseHandle` refuses it.
KXQTS_C_API HANDLE RegisterEventSourceA(LPCSTR lpUNCServerName, LPCSTR lpSourceName);
/// \copydoc RegisterEventSourceA
KXQTS_C_API HANDLE RegisterEventSourceW(LPCWSTR lpUNCServerName, LPCWSTR lpSourceName);

/// Does nothing. \return `TRUE` for any argument, null included.
KXQTS_C_API BOOL DeregisterEventSource(HANDLE hEventLog);

/// Tells whether an event is well formed. Its text is composed and delivered nowhere.
///
/// \param hEventLog What \ref RegisterEventSourceA gave.
/// \param wNumStrings How many strings there are at \a lpStrings; only that there are some counts.
/// \param lpStrings Null counts as no strings, and a null string as an empty one.
/// \param lpRawData,dwDataSize The event's data. **An event without data counts as not reported.**
/// \param wType,lpUserSid Ignored.
/// \return `TRUE` for an event with strings and data. `FALSE` for another handle and without data,
/// with `errno` left alone, and without strings, with `errno` 87.
KXQTS_C_API BOOL ReportEventA(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID,
                              PSID lpUserSid, WORD wNumStrings, DWORD dwDataSize, LPCSTR* lpStrings,
                              LPVOID lpRawData);
/// \copydoc ReportEventA
KXQTS_C_API BOOL ReportEventW(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID,
                              PSID lpUserSid, WORD wNumStrings, DWORD dwDataSize,
                              LPCWSTR* lpStrings, LPVOID lpRawData);
