// Code pages, flags and default characters are ignored on purpose: all 8-bit text of these calls is
// in the system's encoding.

#include <KxQts/errors.h>
#include <KxQts/winapi/text.h>

#include "support/systemtext.h"
#include "support/wipe.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cwchar>

namespace Error = Korvex::Error;

namespace {

constexpr int longestText = Korvex::longestSystemText;
constexpr std::size_t tooLong = Korvex::longestSystemText + 1;

/// A copy of a text with a zero behind it: an explicit length promises none, and the text may lie
/// where the result goes.
class TerminatedCopy {
public:
    TerminatedCopy(const wchar_t* text, std::size_t length) : size(length + 1) {
        *std::copy_n(text, length, copy.data()) = L'\0';
    }
    ~TerminatedCopy() { Korvex::wipe(copy.data(), size * sizeof(wchar_t)); }
    TerminatedCopy(const TerminatedCopy&) = delete;
    TerminatedCopy& operator=(const TerminatedCopy&) = delete;

    [[nodiscard]] std::wstring_view view() const { return {copy.data(), size}; }

private:
    std::array<wchar_t, Korvex::longestSystemText + 1> copy;
    std::size_t size;
};

/// The length that a caller means; too long for a text without end and for a negative length.
std::size_t lengthOf(const wchar_t* text, int stated) {
    if (stated == 0 || stated == -1)
        return wcsnlen(text, tooLong);
    return stated < 0 ? tooLong : static_cast<std::size_t>(stated);
}

/// Hands a result over, or only its length when there is no room for it.
int deliver(std::string_view bytes, char* out, int room) {
    const int length = static_cast<int>(bytes.size());
    if (out && length <= room) {
        std::ranges::copy(bytes, out);
        errno = Error::None;
    }
    return length;
}

int convert(const TerminatedCopy& text, char* out, int room) {
    Korvex::EncodedText bytes;
    const Korvex::WipedAtEnd wiping(bytes);
    const std::size_t length = Korvex::encodeSystemText(text.view(), bytes);
    errno = Error::Internal;
    return length > 0 ? deliver({bytes.data(), length}, out, room) : 0;
}

} // namespace

int MultiByteToWideChar(UINT, DWORD, LPCSTR lpMultiByteStr, int cbMultiByte, LPWSTR lpWideCharStr,
                        int cchWideChar) {
    if (!lpMultiByteStr || cbMultiByte > longestText || cbMultiByte < -1 || !lpWideCharStr ||
        cchWideChar < 1)
        return 0;
    const int limit = cbMultiByte > 0 ? cbMultiByte : longestText;
    const std::size_t length = strnlen(lpMultiByteStr, static_cast<std::size_t>(limit));
    return length > 0 ? Korvex::decodeSystemText({lpMultiByteStr, length}, lpWideCharStr) : 0;
}

int WideCharToMultiByte(UINT, DWORD, LPCWSTR lpWideCharStr, int cchWideChar, LPSTR lpMultiByteStr,
                        int cbMultiByte, LPCSTR, LPBOOL) {
    errno = Error::InvalidParameter;
    if (!lpWideCharStr || cchWideChar > longestText)
        return 0;
    const std::size_t length = lengthOf(lpWideCharStr, cchWideChar);
    if (length == 0)
        return 0;
    errno = Error::Internal;
    const bool convertible = length < tooLong;
    const TerminatedCopy text(lpWideCharStr, convertible ? length : 0);
    if (lpMultiByteStr)
        *lpMultiByteStr = '\0';
    return convertible ? convert(text, lpMultiByteStr, cbMultiByte) : 0;
}
