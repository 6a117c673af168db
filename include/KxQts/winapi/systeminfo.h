/// \file
/// The computer's name, the keyboard, and dates and times as text.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

/// Characters of the longest name of a host, the terminator not counted. On Windows there are 15.
#define MAX_COMPUTERNAME_LENGTH 64

/// \name Locales, and flags of the calls for dates and times
/// All ignored.
/// @{
#define LOCALE_USER_DEFAULT 0x0400u
#define LOCALE_SYSTEM_DEFAULT 0x0800u
#define LOCALE_NEUTRAL 0x0000u
#define LOCALE_INVARIANT 0x007Fu
#define LOCALE_NOUSEROVERRIDE 0x80000000u
#define DATE_SHORTDATE 0x00000001u
#define DATE_LONGDATE 0x00000002u
#define DATE_USE_ALT_CALENDAR 0x00000004u
#define TIME_NOMINUTESORSECONDS 0x00000001u
#define TIME_NOSECONDS 0x00000002u
#define TIME_NOTIMEMARKER 0x00000004u
#define TIME_FORCE24HOURFORMAT 0x00000008u
/// @}

/// Gives the name of this host.
///
/// \param lpBuffer Receives the whole name and a terminating zero. **There is no limit: it must
/// have room for the name**, which has at most 64 characters on Linux. Null: nothing is written.
/// \param nSize Ignored: neither read nor written. May be null.
/// \return `TRUE`, always.
KXQTS_C_API BOOL GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize);
/// \copydoc GetComputerNameA
KXQTS_C_API BOOL GetComputerNameW(LPWSTR lpBuffer, LPDWORD nSize);

/// Not supported. Takes no argument. \return Null, with `errno` 50.
KXQTS_C_API HKL GetKeyboardLayout(void);

/// Gives a time of day as text: "14:07:09". **Not the date**, which is what callers rely on.
///
/// \param Locale,dwFlags,lpFormat Ignored.
/// \param lpTime The time in question; null for the current local time.
/// \param lpText Receives the text and a terminating zero.
/// \param cchText Characters that \a lpText has room for, the terminator included. 0: only the size
/// is asked for, and nothing is written.
/// \return With `errno` 0: the length of the text, **without the terminator**; or the size that is
/// needed, with it, when \a cchText is 0. 0 with `errno` 87 when \a cchText is negative, or not 0
/// without a buffer, and with `errno` 234 when there is too little room.
KXQTS_C_API int GetDateFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                               LPCSTR lpFormat, LPSTR lpText, int cchText);
/// \copydoc GetDateFormatA
KXQTS_C_API int GetDateFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                               LPCWSTR lpFormat, LPWSTR lpText, int cchText);

/// The same as \ref GetDateFormatA.
KXQTS_C_API int GetTimeFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                               LPCSTR lpFormat, LPSTR lpText, int cchText);
/// \copydoc GetTimeFormatA
KXQTS_C_API int GetTimeFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                               LPCWSTR lpFormat, LPWSTR lpText, int cchText);
