#include "platform/corefoundation/encodings.h"

#include "platform/corefoundation/string.h"
#include "platform/scopes.h"

#include <QStringConverter>

#include <algorithm>
#include <array>
#include <cstring>
#include <langinfo.h>
#include <locale.h>

using namespace Korvex::Cf;

namespace {

constexpr int firstHighByte = 0x80;

// What the bytes from 0x80 on mean in Mac Roman.
constexpr std::array<char16_t, 128> macRoman{
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

char16_t fromMacRoman(unsigned char byte) {
    return byte < firstHighByte ? byte : macRoman[static_cast<std::size_t>(byte - firstHighByte)];
}

/// \return −1 for what Mac Roman does not have.
int toMacRoman(char16_t unit) {
    if (unit < firstHighByte)
        return unit;
    const auto* found = std::find(macRoman.begin(), macRoman.end(), unit);
    return found == macRoman.end() ? -1
                                   : firstHighByte + static_cast<int>(found - macRoman.begin());
}

int toSingleByte(char16_t unit, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingMacRoman)
        return toMacRoman(unit);
    const int limit = encoding == kCFStringEncodingASCII ? firstHighByte : 0x100;
    return unit < limit ? unit : -1;
}

bool isSingleByte(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacRoman || encoding == kCFStringEncodingASCII ||
           encoding == kCFStringEncodingISOLatin1;
}

std::optional<QString> fromUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::optional<QByteArray> toUtf8(const QString& text) {
    if (!text.isValidUtf16())
        return std::nullopt;
    return text.toUtf8();
}

CFStringEncoding encodingOfLocale() {
    const Korvex::ErrorNumberKept meanwhile;
    locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!locale)
        return kCFStringEncodingMacRoman;
    const QByteArray name = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    if (name == "UTF-8")
        return kCFStringEncodingUTF8;
    if (name == "ISO-8859-1")
        return kCFStringEncodingISOLatin1;
    return name == "ANSI_X3.4-1968" ? kCFStringEncodingASCII : kCFStringEncodingMacRoman;
}

CFStringRef stringOf(const QByteArray& bytes, CFStringEncoding encoding) {
    const std::optional<QString> text = decode(bytes, encoding);
    return text ? makeString(*text) : nullptr;
}

} // namespace

namespace Korvex::Cf {

std::optional<QString> decode(const QByteArray& bytes, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8)
        return fromUtf8(bytes);
    if (!isSingleByte(encoding))
        return std::nullopt;
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (encoding == kCFStringEncodingASCII && value >= firstHighByte)
            return std::nullopt;
        text +=
            QChar(encoding == kCFStringEncodingMacRoman ? fromMacRoman(value) : char16_t(value));
    }
    return text;
}

std::optional<QByteArray> encode(const QString& text, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8)
        return toUtf8(text);
    if (!isSingleByte(encoding))
        return std::nullopt;
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar unit : text) {
        const int byte = toSingleByte(unit.unicode(), encoding);
        if (byte < 0)
            return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

} // namespace Korvex::Cf

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
    return text ? stringOf(QByteArray(text), encoding) : nullptr;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean) {
    if (count < 0 || (count > 0 && !bytes))
        return nullptr;
    return stringOf(QByteArray(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(count)),
                    encoding);
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    if (!buffer || size <= 0)
        return 0;
    *buffer = 0;
    const std::optional<QByteArray> bytes = string ? encode(text(string), encoding) : std::nullopt;
    if (!bytes || bytes->size() >= size)
        return 0;
    std::memcpy(buffer, bytes->constData(), static_cast<std::size_t>(bytes->size()) + 1);
    return 1;
}

CFStringEncoding CFStringGetSystemEncoding(void) {
    static const CFStringEncoding encoding = encodingOfLocale();
    return encoding;
}
