// Conversion between 8-bit and wide text in several encodings, with any text, code page, flags and
// sizes: results are as long as a query says, nothing is written behind them, and what was decoded
// is encoded again.

#include "common/input.h"
#include "common/locales.h"
#include "common/require.h"
#include "common/room.h"
#include "platform/linux/localetextencoding.h"
#include "platform/replaceable.h"

#include <KxQts/winapi/text.h>

#include <array>
#include <cerrno>
#include <cwchar>
#include <memory>

using Korvex::LocaleTextEncoding;
using KxFuzz::Input;
using KxFuzz::require;
using KxFuzz::Room;

namespace {

constexpr int untouched = -77;
constexpr int longestInput = 259;
constexpr std::size_t longestDecoded = 261; // with the zero behind it
constexpr int longestEncoded = 31;

/// What the calls ignore.
struct Ignored {
    UINT codePage;
    DWORD flags;
};

/// The encoding of an index; each is opened once.
Korvex::TextEncoding& encodingOf(std::size_t index) {
    static const KxTest::TestLocales locales;
    static std::array<LocaleTextEncoding, 9> encodings{LocaleTextEncoding("C.UTF-8"),
                                                       LocaleTextEncoding("C"),
                                                       LocaleTextEncoding("de_DE.ISO-8859-1"),
                                                       LocaleTextEncoding("ja_JP.EUC-JP"),
                                                       LocaleTextEncoding("ja_JP.SHIFT_JIS"),
                                                       LocaleTextEncoding("he_IL.CP1255"),
                                                       LocaleTextEncoding("zh_HK.BIG5-HKSCS"),
                                                       LocaleTextEncoding("en_US.IBM037"),
                                                       LocaleTextEncoding("de_DE.KXQTS-UNKNOWN")};
    return encodings[index % encodings.size()];
}

/// Decodes with exactly the bytes that are stated, or up to their end when none are.
int decode(const Ignored& ignored, const std::string& bytes, int stated, wchar_t* out, int room) {
    const std::size_t whole = bytes.size() + 1;
    const std::size_t size = stated > 0 ? std::min(whole, std::size_t(stated)) : whole;
    const auto exact = std::make_unique<char[]>(size);
    std::copy_n(bytes.c_str(), size, exact.get());
    errno = untouched;
    const int units =
        MultiByteToWideChar(ignored.codePage, ignored.flags, exact.get(), stated, out, room);
    require(errno == untouched);
    return units;
}

int unitsIn(std::wstring_view text) {
    return static_cast<int>(text.size()) +
           static_cast<int>(std::count_if(text.begin(), text.end(),
                                          [](wchar_t character) { return character > 0xFFFF; }));
}

void requireSameInPlace(const std::string& bytes, std::wstring_view expected, int units) {
    std::array<wchar_t, longestDecoded + 64> shared{};
    char* const text = reinterpret_cast<char*>(shared.data());
    std::copy_n(bytes.c_str(), bytes.size() + 1, text);
    require(MultiByteToWideChar(0, 0, text, -1, shared.data(), 1) == units);
    require(units == 0 || expected == shared.data());
}

std::wstring checkDecoding(const Ignored& ignored, const std::string& bytes, int stated, int room) {
    Room<wchar_t> out(longestDecoded);
    require(decode(ignored, bytes, stated, nullptr, room) == 0);
    const int units = decode(ignored, bytes, stated, out.get(), room);
    if (room < 1 || stated > longestInput || stated < -1)
        require(units == 0);
    if (units == 0) {
        // A mark of byte order alone is a text without characters.
        out.requireUntouchedFrom(out[0] == L'\0' ? 1 : 0);
        return {};
    }
    const std::wstring text(out.text());
    require(units == unitsIn(text) && units < static_cast<int>(longestDecoded));
    require(out[static_cast<std::size_t>(units)] == L'\0');
    out.requireUntouchedFrom(static_cast<std::size_t>(units) + 1);
    Room<wchar_t> again(longestDecoded);
    require(decode({~ignored.codePage, ~ignored.flags}, bytes, stated, again.get(), 1) == units);
    require(again.text() == text);
    if (stated == -1 && bytes.size() <= longestInput)
        requireSameInPlace(bytes, text, units);
    return text;
}

/// Encodes with exactly the characters that are stated, or up to their end when none are. Too many
/// are refused unread.
int encode(const Ignored& ignored, const std::wstring& text, int stated, char* out, int room) {
    const std::size_t whole = text.size() + 1;
    const std::size_t size = stated > 0 ? std::min(whole, std::size_t(stated)) : whole;
    const auto exact = std::make_unique<wchar_t[]>(size);
    std::copy_n(text.c_str(), size, exact.get());
    const int stating = stated > 0 && stated <= longestInput ? static_cast<int>(size) : stated;
    const char defaultCharacter = '#';
    BOOL used = untouched;
    const int length = WideCharToMultiByte(ignored.codePage, ignored.flags, exact.get(), stating,
                                           out, room, &defaultCharacter, &used);
    require(used == untouched && defaultCharacter == '#');
    return length;
}

/// \return The bytes with the zero behind them; empty for a failure.
std::string checkEncoding(const Ignored& ignored, const std::wstring& text, int stated, int room) {
    const int length = encode(ignored, text, stated, nullptr, room);
    require(length >= 0 && length <= longestEncoded && (errno == 1359 || errno == 87));
    Room<char> out(longestEncoded + 64);
    const int written = encode(ignored, text, stated, out.get(), room);
    require(written == length && (length > 0 || errno == 1359 || errno == 87));
    const bool isCopied = length > 0 && room >= length;
    require(!isCopied || errno == 0);
    out.requireUntouchedFrom(isCopied ? static_cast<std::size_t>(length) : 1);
    require(isCopied || out[0] == '\0' || out[0] == 0x5A);
    if (length == 0)
        return {};
    Room<char> all(longestEncoded);
    require(encode({~ignored.codePage, 0}, text, stated, all.get(), longestEncoded) == length);
    require(!isCopied || all.first(static_cast<std::size_t>(length)) ==
                             out.first(static_cast<std::size_t>(length)));
    return std::string(all.first(static_cast<std::size_t>(length)));
}

/// What was decoded can be encoded, if it is short, and means the same then.
void checkRoundTrip(const std::wstring& text) {
    if (text.empty() || text.front() == L'\uFEFF')
        return;
    const std::string bytes = checkEncoding({}, text, -1, longestEncoded);
    if (bytes.empty())
        return;
    require(bytes.find('\0') == bytes.size() - 1);
    require(checkDecoding({}, bytes.substr(0, bytes.size() - 1), -1, 1) == text);
}

std::wstring wide(const std::string& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Korvex::Replacement<Korvex::TextEncoding> encoding(encodingOf(input.number<std::uint8_t>()));
    const Ignored ignored{input.number<std::uint16_t>(), input.number<std::uint8_t>()};
    const bool isStated = input.flag();
    const int stated = isStated ? input.number<std::int16_t>() : -static_cast<int>(input.flag());
    const int room = input.number<std::int8_t>();
    const std::string bytes = input.text();
    const std::wstring decoded = checkDecoding(ignored, bytes, stated, room);
    checkRoundTrip(decoded);
    const std::string encoded = checkEncoding(ignored, wide(input.rest()), stated, room);
    (void)checkDecoding(ignored, encoded.c_str(), -1, 1);
    return 0;
}
