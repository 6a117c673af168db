/// \file
/// Conversion between 8-bit and wide text, and small calls around memory and time.
///
/// 8-bit text of these two conversions is in the encoding of the user's locale, whatever code page
/// a caller names; where that encoding is unknown to the system, it is taken for Mac Roman. Wide
/// text is UTF-32. A mark of byte order (U+FEFF) in front of a text is left out of the result.
#pragma once

#include <KxQts/export.h>
#include <KxQts/winapi/types.h>

#define CP_ACP 0u
#define CP_OEMCP 1u
#define CP_MACCP 2u
#define CP_THREAD_ACP 3u
#define CP_SYMBOL 42u
#define CP_UTF7 65000u
#define CP_UTF8 65001u

#define MB_PRECOMPOSED 0x00000001u
#define MB_COMPOSITE 0x00000002u
#define MB_USEGLYPHCHARS 0x00000004u
#define MB_ERR_INVALID_CHARS 0x00000008u

#define WC_DISCARDNS 0x00000010u
#define WC_SEPCHARS 0x00000020u
#define WC_DEFAULTCHAR 0x00000040u
#define WC_ERR_INVALID_CHARS 0x00000080u
#define WC_COMPOSITECHECK 0x00000200u
#define WC_NO_BEST_FIT_CHARS 0x00000400u

/// Converts 8-bit text to wide text.
///
/// \param CodePage, dwFlags Ignored.
/// \param lpMultiByteStr The text. It may overlap the result.
/// \param cbMultiByte Its length in bytes, at most 259; the text ends earlier at a zero byte. With 0
/// and −1 it ends at its zero byte, or else after 259 bytes.
/// \param lpWideCharStr Receives the characters and a zero behind them.
/// \param cchWideChar Must be at least 1 and **does not limit what is written**: provide room for as
/// many characters as the text has bytes, and one more. 261 are always enough.
/// \return The length of the text in UTF-16 units, without the zero. That is the count of characters,
/// unless there are some beyond U+FFFF, which count twice; the characters are followed by zeros up
/// to the index returned then. 0 when nothing was converted: a null or empty text, a length out of
/// range, malformed or incomplete text (nothing of it is converted), a null \a lpWideCharStr and a
/// \a cchWideChar below 1. `errno` is left alone.
/// \par Differs from Windows
/// The size needed cannot be asked for, and the terminating zero is never counted.
KXQTS_C_API int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr,
                                    int cbMultiByte, LPWSTR lpWideCharStr, int cchWideChar);

/// Converts wide text to 8-bit text, **of at most 31 bytes**.
///
/// The zero that ends the text is converted with it, so there is room for 30 ASCII characters. A
/// character that the encoding lacks is replaced by what the user's locale puts in its place (`EUR`
/// for a euro sign); where the locale knows nothing either, the call fails, so that no text is
/// damaged unnoticed.
///
/// \param CodePage, dwFlags Ignored.
/// \param lpWideCharStr The text.
/// \param cchWideChar Its length in characters, at most 259; zeros inside are characters. With 0 and
/// −1 the text ends at its zero. In either case a zero is converted behind the last character,
/// which is counted in the result.
/// \param lpMultiByteStr Receives the bytes. Its first byte is set to 0 before the conversion.
/// \param cbMultiByte Room there, in bytes.
/// \param lpDefaultChar, lpUsedDefaultChar Ignored, never read or written.
/// \return The length of the result in bytes: the bytes were written and `errno` is 0. When
/// \a cbMultiByte is less than that or \a lpMultiByteStr is null, only the length is told and
/// `errno` is 1359. 0 on failure, with `errno` 87 for a null or empty text and a length above 259,
/// and 1359 for a negative length other than −1, values that are no characters, characters that
/// cannot be converted and a result of more than 31 bytes.
/// \par Differs from Windows
/// The limit, and the terminating zero that an explicit length adds.
KXQTS_C_API int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr,
                                    int cchWideChar, LPSTR lpMultiByteStr, int cbMultiByte,
                                    LPCSTR lpDefaultChar, LPBOOL lpUsedDefaultChar);

/// Fills \a len bytes with zero. Null is left alone. A function here, a macro on Windows.
KXQTS_C_API void ZeroMemory(void* dst, size_t len);

/// Releases memory of the C heap (`malloc`); null is left alone.
/// \return Null, always.
KXQTS_C_API HLOCAL LocalFree(HLOCAL p);

/// The time since the system was started, in milliseconds; 0 again after every 2^32 of them (49.7
/// days). Nobody sets that clock.
KXQTS_C_API DWORD GetTickCount(void);

/// Lets the calling thread sleep for \a ms milliseconds, at least, however many they are.
/// \return 0, or −1 with `errno` 4 when a signal ended the sleep. A cancellation point.
KXQTS_C_API int kx_sleep(unsigned int ms);
