#pragma once

#include "platform/propertylist/tree.h"

#include <QStringView>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The single values of a binary property list, byte by byte.
namespace Korvex::PropertyList {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// The high half of the byte that a value begins with.
enum class Marker : std::uint8_t {
    Constant = 0x0,
    Integer = 0x1,
    Real = 0x2,
    Date = 0x3,
    Data = 0x4,
    Ascii = 0x5,
    Utf16 = 0x6,
    Uid = 0x8,
    Array = 0xA,
    Dictionary = 0xD,
};

inline constexpr std::uint8_t falseByte = 0x08;
inline constexpr std::uint8_t trueByte = 0x09;

/// How a value begins, and how long it is.
struct Head {
    Marker marker{};
    std::size_t count = 0;  ///< Bytes, code units, elements or entries
    std::size_t length = 0; ///< Of the head itself, in bytes
    std::size_t size = 0;   ///< Of the whole value; of the head alone for a container
};

/// Reads how the value at the beginning of some bytes begins.
/// \return Nothing when it is of no known type or reaches beyond the bytes.
[[nodiscard]] std::optional<Head> readHead(ByteView bytes);

/// As above for a value that has been read before.
[[nodiscard]] Head knownHead(const std::uint8_t* bytes);

[[nodiscard]] Kind kindOf(Marker marker);

[[nodiscard]] std::uint64_t readBigEndian(const std::uint8_t* bytes, std::size_t count);

void appendBigEndian(Bytes& bytes, std::uint64_t value, std::size_t count);
void appendHead(Bytes& bytes, Marker marker, std::size_t count);
/// How many bytes \ref appendHead appends.
[[nodiscard]] std::size_t headLength(std::size_t count);
void appendText(Bytes& bytes, QStringView text);
void appendInteger(Bytes& bytes, std::int64_t value);
/// An integer beyond 64 bits, in two halves.
void appendWideInteger(Bytes& bytes, std::int64_t low, std::int64_t high);
void appendReal(Bytes& bytes, double value, bool singlePrecision);
void appendDate(Bytes& bytes, double secondsSince2001);
void appendData(Bytes& bytes, ByteView data);
void appendUid(Bytes& bytes, ByteView uid);

/// The text of a string value, in the form most callers want.
[[nodiscard]] QString textAt(const std::uint8_t* bytes);
[[nodiscard]] bool textEquals(const std::uint8_t* bytes, QStringView text);
[[nodiscard]] std::uint32_t hashOfText(const std::uint8_t* bytes);

} // namespace Korvex::PropertyList
