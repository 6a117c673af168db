#include "platform/utf8.h"

#include "platform/character.h"

#include <array>

namespace Korvex {

namespace {

constexpr unsigned continuationBits = 6;
constexpr char32_t continuationMask = 0x3F;
constexpr char32_t continuationMark = 0x80;
constexpr std::size_t longestSequence = 4;

/// What a sequence of some length looks like.
struct Sequence {
    char32_t mark;     // the lead byte's bits that tell the length
    char32_t smallest; // character; a smaller one has a shorter sequence
};
constexpr std::array<Sequence, longestSequence + 1> sequences{
    {{}, {0, 0}, {0xC0, 0x80}, {0xE0, 0x800}, {0xF0, 0x10000}}};

/// Reads the character of a sequence of a length. \return Whether there is such a sequence.
template <std::size_t Length>
bool decodeSequence(std::string_view bytes, wchar_t& character) {
    constexpr Sequence sequence = sequences[Length];
    if (bytes.size() < Length)
        return false;
    char32_t value = static_cast<unsigned char>(bytes[0]) ^ sequence.mark;
    char32_t strayBits = 0;
    for (std::size_t i = 1; i < Length; ++i) {
        const char32_t bits = static_cast<unsigned char>(bytes[i]) ^ continuationMark;
        strayBits |= bits & ~continuationMask;
        value = value << continuationBits | (bits & continuationMask);
    }
    character = static_cast<wchar_t>(value);
    return strayBits == 0 && value >= sequence.smallest && isCharacter(character);
}

/// Reads the first character of a text. \return The length of its sequence; 0 when it is malformed.
std::size_t decodeFirst(std::string_view bytes, wchar_t& character) {
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (lead < sequences[2].smallest) {
        character = lead;
        return 1;
    }
    // Each length has code of its own, so that the processor can guess where the next one begins.
    if (lead < sequences[3].mark)
        return lead >= sequences[2].mark && decodeSequence<2>(bytes, character) ? 2 : 0;
    if (lead < sequences[4].mark)
        return decodeSequence<3>(bytes, character) ? 3 : 0;
    return decodeSequence<4>(bytes, character) ? 4 : 0;
}

/// Writes a character as a sequence of a length. \return That length; 0 when there is no room.
template <std::size_t Length>
std::size_t encodeSequence(char32_t character, std::span<char> room) {
    if (room.size() < Length)
        return 0;
    for (std::size_t i = Length - 1; i > 0; --i) {
        room[i] = static_cast<char>(continuationMark | (character & continuationMask));
        character >>= continuationBits;
    }
    room[0] = static_cast<char>(sequences[Length].mark | character);
    return Length;
}

/// Writes a character. \return The length of its sequence; 0 when there is no room or no character.
std::size_t encode(wchar_t character, std::span<char> room) {
    const auto value = static_cast<char32_t>(character);
    if (value < sequences[2].smallest)
        return encodeSequence<1>(value, room);
    if (value < sequences[3].smallest)
        return encodeSequence<2>(value, room);
    if (!isCharacter(character))
        return 0;
    if (value < sequences[4].smallest)
        return encodeSequence<3>(value, room);
    return encodeSequence<4>(value, room);
}

} // namespace

std::optional<std::size_t> decodeUtf8(std::string_view bytes, std::span<wchar_t> room) {
    std::size_t count = 0;
    for (; !bytes.empty(); ++count) {
        const std::size_t length = count < room.size() ? decodeFirst(bytes, room[count]) : 0;
        if (length == 0)
            return std::nullopt;
        bytes.remove_prefix(length);
    }
    return count;
}

std::optional<std::size_t> encodeUtf8(std::wstring_view characters, std::span<char> room) {
    std::span<char> left = room;
    for (const wchar_t character : characters) {
        const std::size_t length = encode(character, left);
        if (length == 0)
            return std::nullopt;
        left = left.subspan(length);
    }
    return room.size() - left.size();
}

} // namespace Korvex
