#include "support/systemtext.h"

#include "platform/scopes.h"
#include "platform/textencoding.h"
#include "support/ascii.h"
#include "support/wipe.h"

#include <algorithm>
#include <functional>

namespace Korvex {

namespace {

constexpr std::size_t longestDecodedText = 260; // UTF-16 units
constexpr wchar_t byteOrderMark = L'\uFEFF';
constexpr wchar_t lastOfBasicPlane = 0xFFFF;

std::wstring_view withoutMark(std::wstring_view text) {
    return text.starts_with(byteOrderMark) ? text.substr(1) : text;
}

bool overlap(std::string_view bytes, const wchar_t* out) {
    const auto* begin = reinterpret_cast<const char*>(out);
    const auto* end = reinterpret_cast<const char*>(out + bytes.size() + 1);
    const std::less<> before;
    return before(bytes.data(), end) && before(begin, bytes.data() + bytes.size());
}

int widenAscii(std::string_view bytes, wchar_t* out) {
    const char* in = bytes.data();
    const std::size_t length = bytes.size();
    for (std::size_t i = 0; i < length; ++i)
        out[i] = static_cast<unsigned char>(in[i]);
    out[length] = L'\0';
    return static_cast<int>(length);
}

/// Writes characters and zeros behind them: up to the index that is the result, so that a caller
/// who trusts the count of UTF-16 units finds a zero there, as well as behind the last character.
int store(std::wstring_view characters, wchar_t* out) {
    const auto beyond = static_cast<std::size_t>(std::ranges::count_if(
        characters, [](wchar_t character) { return character > lastOfBasicPlane; }));
    const std::size_t units = characters.size() + beyond;
    if (units > longestDecodedText)
        return 0;
    std::ranges::copy(characters, out);
    std::fill(out + characters.size(), out + units + 1, L'\0');
    return static_cast<int>(units);
}

// Kept out of the way of plain ASCII text.
[[gnu::noinline]] int convertThenStore(TextEncoding& encoding, std::string_view bytes,
                                       wchar_t* out) {
    std::array<wchar_t, longestDecodedText> characters;
    const auto count = encoding.decode(bytes, characters);
    const int units = count ? store(withoutMark({characters.data(), *count}), out) : 0;
    wipe(characters.data(), count.value_or(characters.size()) * sizeof(wchar_t));
    return units;
}

} // namespace

int decodeSystemText(std::string_view bytes, wchar_t* out) {
    // Also while the encoding is looked up, at its first use.
    const ErrorNumberKept kept;
    TextEncoding& encoding = systemTextEncoding();
    return isAscii(bytes) && encoding.extendsAscii() && !overlap(bytes, out)
               ? widenAscii(bytes, out)
               : convertThenStore(encoding, bytes, out);
}

std::size_t encodeSystemText(std::wstring_view text, EncodedText& out) {
    TextEncoding& encoding = systemTextEncoding();
    if (text.size() <= out.size() && isAscii(text) && encoding.extendsAscii()) {
        std::ranges::transform(text, out.begin(), [](wchar_t c) { return static_cast<char>(c); });
        return text.size();
    }
    return encoding.encode(withoutMark(text), out).value_or(0);
}

} // namespace Korvex
