#include "platform/propertylist/scalars.h"

#include "platform/corefoundation/string.h"

#include <QVarLengthArray>

#include <algorithm>
#include <bit>

namespace Korvex::PropertyList {

namespace {

constexpr std::uint8_t countFollows = 0xF;
constexpr int byteBits = 8;
constexpr int markerShift = 4;
constexpr std::uint8_t sizeMask = 0xF;
constexpr std::size_t dateSize = 8;

std::uint8_t markerByte(Marker marker, std::size_t low) {
    return static_cast<std::uint8_t>(static_cast<unsigned>(marker) << markerShift | low);
}

/// Values whose length the first byte alone tells.
std::optional<std::size_t> fixedSize(Marker marker, std::uint8_t low) {
    constexpr std::uint8_t log2OfWidest = 4;
    constexpr std::uint8_t log2OfFloat = 2;
    constexpr std::uint8_t log2OfDouble = 3;
    switch (marker) {
    case Marker::Constant:
        return low == falseByte || low == trueByte ? std::optional<std::size_t>(0) : std::nullopt;
    case Marker::Integer:
        return low <= log2OfWidest ? std::optional(std::size_t(1) << low) : std::nullopt;
    case Marker::Real:
        return low == log2OfFloat || low == log2OfDouble ? std::optional(std::size_t(1) << low)
                                                         : std::nullopt;
    case Marker::Date:
        return low == log2OfDouble ? std::optional(dateSize) : std::nullopt;
    case Marker::Uid:
        return std::size_t(low) + 1;
    default:
        return std::nullopt;
    }
}

/// Bytes that one of a value's count takes; 0 for containers, nothing for an unknown type.
std::optional<std::size_t> unitSize(Marker marker) {
    switch (marker) {
    case Marker::Data:
    case Marker::Ascii:
        return 1;
    case Marker::Utf16:
        return 2;
    case Marker::Array:
    case Marker::Dictionary:
        return 0;
    default:
        return std::nullopt;
    }
}

/// Completes a head whose count is more than its first byte has room for.
bool readCount(Head& head, ByteView bytes) {
    constexpr std::uint8_t log2OfWidest = 3;
    if (bytes.size() < 2 || Marker(bytes[1] >> markerShift) != Marker::Integer ||
        (bytes[1] & sizeMask) > log2OfWidest)
        return false;
    const std::size_t width = std::size_t(1) << (bytes[1] & sizeMask);
    if (bytes.size() < 2 + width)
        return false;
    const std::uint64_t count = readBigEndian(bytes.data() + 2, width);
    if (count > bytes.size()) // each takes a byte at the very least
        return false;
    head.count = static_cast<std::size_t>(count);
    head.length = 2 + width;
    return true;
}

ByteView textBytes(const std::uint8_t* bytes, const Head& head) {
    return {bytes + head.length, head.size - head.length};
}

/// Hands the code units of a string value to a function, as a view.
template <class Use>
auto withText(const std::uint8_t* bytes, Use use) {
    constexpr std::size_t usualLength = 64;
    const Head head = knownHead(bytes);
    const ByteView text = textBytes(bytes, head);
    QVarLengthArray<char16_t, usualLength> units(static_cast<qsizetype>(head.count));
    if (head.marker == Marker::Ascii)
        std::copy(text.begin(), text.end(), units.begin());
    else
        for (std::size_t i = 0; i < head.count; ++i)
            units[static_cast<qsizetype>(i)] =
                static_cast<char16_t>(text[2 * i] << byteBits | text[2 * i + 1]);
    return use(QStringView(units.data(), units.size()));
}

} // namespace

std::uint64_t readBigEndian(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << byteBits | bytes[i];
    return value;
}

std::optional<Head> readHead(ByteView bytes) {
    if (bytes.empty())
        return std::nullopt;
    Head head;
    head.marker = Marker(bytes[0] >> markerShift);
    const std::uint8_t low = bytes[0] & sizeMask;
    head.count = low;
    head.length = 1;
    const std::optional<std::size_t> fixed = fixedSize(head.marker, low);
    const std::optional<std::size_t> unit = unitSize(head.marker);
    if (!fixed && (!unit || (low == countFollows && !readCount(head, bytes))))
        return std::nullopt;
    const std::size_t room = bytes.size() - head.length;
    const std::size_t width = fixed ? *fixed : *unit;
    if (fixed ? room < width : width != 0 && head.count > room / width)
        return std::nullopt;
    head.size = head.length + (fixed ? width : head.count * width);
    const ByteView text = bytes.subspan(head.length, head.size - head.length);
    if (head.marker == Marker::Ascii &&
        std::any_of(text.begin(), text.end(), [](std::uint8_t byte) { return byte > 0x7F; }))
        return std::nullopt;
    return head;
}

Head knownHead(const std::uint8_t* bytes) {
    Head head;
    head.marker = Marker(bytes[0] >> markerShift);
    const std::uint8_t low = bytes[0] & sizeMask;
    head.count = low;
    head.length = 1;
    if (const std::optional<std::size_t> fixed = fixedSize(head.marker, low)) {
        head.size = 1 + *fixed;
        return head;
    }
    if (low == countFollows) {
        const std::size_t width = std::size_t(1) << (bytes[1] & sizeMask);
        head.count = static_cast<std::size_t>(readBigEndian(bytes + 2, width));
        head.length = 2 + width;
    }
    head.size = head.length + head.count * unitSize(head.marker).value_or(0);
    return head;
}

Kind kindOf(Marker marker) {
    switch (marker) {
    case Marker::Constant:
        return Kind::Boolean;
    case Marker::Integer:
    case Marker::Real:
        return Kind::Number;
    case Marker::Data:
        return Kind::Data;
    case Marker::Ascii:
    case Marker::Utf16:
        return Kind::String;
    case Marker::Array:
        return Kind::Array;
    case Marker::Dictionary:
        return Kind::Dictionary;
    default:
        return Kind::Other;
    }
}

void appendBigEndian(Bytes& bytes, std::uint64_t value, std::size_t count) {
    for (std::size_t i = count; i-- > 0;)
        bytes.push_back(static_cast<std::uint8_t>(value >> (i * byteBits)));
}

std::size_t headLength(std::size_t count) {
    if (count < countFollows)
        return 1;
    if (count <= 0xFF)
        return 3;
    return count <= 0xFFFF ? 4 : 6;
}

void appendHead(Bytes& bytes, Marker marker, std::size_t count) {
    if (count < countFollows) {
        bytes.push_back(markerByte(marker, count));
        return;
    }
    bytes.push_back(markerByte(marker, countFollows));
    const std::size_t width = headLength(count) - 2;
    bytes.push_back(
        markerByte(Marker::Integer, static_cast<std::size_t>(std::bit_width(width) - 1)));
    appendBigEndian(bytes, count, width);
}

void appendText(Bytes& bytes, QStringView text) {
    const bool ascii =
        std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() <= 0x7F; });
    appendHead(bytes, ascii ? Marker::Ascii : Marker::Utf16, static_cast<std::size_t>(text.size()));
    for (const QChar unit : text)
        appendBigEndian(bytes, unit.unicode(), ascii ? 1 : 2);
}

void appendInteger(Bytes& bytes, std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    std::size_t log2OfWidth = 3; // only integers this wide have a sign
    if (value >= 0 && bits <= 0xFFFFFFFF)
        log2OfWidth = bits <= 0xFF ? 0 : bits <= 0xFFFF ? 1 : 2;
    bytes.push_back(markerByte(Marker::Integer, log2OfWidth));
    appendBigEndian(bytes, bits, std::size_t(1) << log2OfWidth);
}

void appendWideInteger(Bytes& bytes, std::int64_t low, std::int64_t high) {
    constexpr std::size_t log2OfWidth = 4;
    bytes.push_back(markerByte(Marker::Integer, log2OfWidth));
    appendBigEndian(bytes, static_cast<std::uint64_t>(high), sizeof high);
    appendBigEndian(bytes, static_cast<std::uint64_t>(low), sizeof low);
}

void appendReal(Bytes& bytes, double value, bool singlePrecision) {
    bytes.push_back(markerByte(Marker::Real, singlePrecision ? 2 : 3));
    if (singlePrecision)
        appendBigEndian(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(value)),
                        sizeof(float));
    else
        appendBigEndian(bytes, std::bit_cast<std::uint64_t>(value), sizeof(double));
}

void appendDate(Bytes& bytes, double secondsSince2001) {
    bytes.push_back(markerByte(Marker::Date, 3));
    appendBigEndian(bytes, std::bit_cast<std::uint64_t>(secondsSince2001), dateSize);
}

void appendData(Bytes& bytes, ByteView data) {
    appendHead(bytes, Marker::Data, data.size());
    bytes.insert(bytes.end(), data.begin(), data.end());
}

void appendUid(Bytes& bytes, ByteView uid) {
    bytes.push_back(markerByte(Marker::Uid, uid.size() - 1));
    bytes.insert(bytes.end(), uid.begin(), uid.end());
}

QString textAt(const std::uint8_t* bytes) {
    return withText(bytes, [](QStringView text) { return text.toString(); });
}

bool textEquals(const std::uint8_t* bytes, QStringView text) {
    const Head head = knownHead(bytes);
    if (head.count != static_cast<std::size_t>(text.size()))
        return false;
    if (head.marker == Marker::Ascii)
        return QLatin1String(reinterpret_cast<const char*>(bytes + head.length), text.size()) ==
               text;
    return withText(bytes, [&](QStringView own) { return own == text; });
}

std::uint32_t hashOfText(const std::uint8_t* bytes) {
    return withText(bytes, [](QStringView text) { return Cf::hashOf(text); });
}

} // namespace Korvex::PropertyList
