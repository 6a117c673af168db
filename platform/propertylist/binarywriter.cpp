#include "platform/propertylist/objects.h"

// What stands in a file behind the single values: the containers, where each value is, and where
// that table is.

namespace Korvex::PropertyList {

namespace {

constexpr std::size_t trailerSize = 32;
constexpr std::size_t unusedInTrailer = 6;

/// How many bytes a number up to a limit takes, as far as readers agree on sizes.
std::size_t widthFor(std::size_t limit) {
    if (limit <= 0xFF)
        return 1;
    return limit <= 0xFFFF ? 2 : 4;
}

template <std::size_t Width>
std::uint8_t* put(std::uint8_t* to, std::uint32_t value) {
    for (std::size_t i = 0; i < Width; ++i)
        to[i] = static_cast<std::uint8_t>(value >> (8 * (Width - 1 - i)));
    return to + Width;
}

template <std::size_t Width>
std::uint8_t* putAll(std::uint8_t* to, const std::vector<std::uint32_t>& values) {
    for (const std::uint32_t value : values)
        to = put<Width>(to, value);
    return to;
}

std::uint8_t* putAll(std::uint8_t* to, const std::vector<std::uint32_t>& values,
                     std::size_t width) {
    switch (width) {
    case 1:
        return putAll<1>(to, values);
    case 2:
        return putAll<2>(to, values);
    default:
        return putAll<4>(to, values);
    }
}

std::size_t sizeOf(const Container& container, std::size_t width) {
    return headLength(container.values.size()) +
           (container.keys.size() + container.values.size()) * width;
}

std::uint8_t* putContainer(std::uint8_t* to, const Container& container, std::size_t width) {
    Bytes head;
    appendHead(head, container.kind == Kind::Array ? Marker::Array : Marker::Dictionary,
               container.values.size());
    to = std::copy(head.begin(), head.end(), to);
    return putAll(putAll(to, container.keys, width), container.values, width);
}

void appendTrailer(Bytes& bytes, std::size_t placeWidth, std::size_t nodeWidth, std::size_t count,
                   Node root, std::size_t table) {
    appendBigEndian(bytes, 0, unusedInTrailer);
    appendBigEndian(bytes, placeWidth, 1);
    appendBigEndian(bytes, nodeWidth, 1);
    for (const std::size_t number : {count, std::size_t(root), table})
        appendBigEndian(bytes, number, sizeof(std::uint64_t));
}

} // namespace

Bytes Objects::tail() const {
    const std::size_t nodeWidth = widthFor(nodes.size() - 1);
    std::vector<std::uint32_t> containerPlaces;
    containerPlaces.reserve(containers.size());
    std::size_t table = log.size();
    for (const Container& container : containers) {
        containerPlaces.push_back(static_cast<std::uint32_t>(table));
        if (container.kind != Kind::None)
            table += sizeOf(container, nodeWidth);
    }
    const std::size_t placeWidth = widthFor(table);
    std::vector<std::uint32_t> places;
    places.reserve(nodes.size());
    for (const Place& node : nodes)
        places.push_back((node.place & containerBit) != 0
                             ? containerPlaces[node.place & ~containerBit]
                             : node.place);
    Bytes bytes;
    bytes.reserve(table - log.size() + places.size() * placeWidth + trailerSize);
    bytes.resize(table - log.size() + places.size() * placeWidth);
    std::uint8_t* to = bytes.data();
    for (const Container& container : containers) {
        if (container.kind != Kind::None)
            to = putContainer(to, container, nodeWidth);
    }
    putAll(to, places, placeWidth);
    appendTrailer(bytes, placeWidth, nodeWidth, nodes.size(), root, table);
    return bytes;
}

} // namespace Korvex::PropertyList
