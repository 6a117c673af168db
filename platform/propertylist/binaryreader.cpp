#include "platform/propertylist/reader.h"

#include <algorithm>
#include <string_view>

namespace Korvex::PropertyList {

namespace {

constexpr std::string_view signature = "bplist0";
constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

/// Where a file says that its values are. All numbers have been checked.
struct Trailer {
    std::size_t placeWidth = 0;
    std::size_t nodeWidth = 0;
    std::size_t count = 0;
    std::size_t root = 0;
    std::size_t table = 0;
};

bool isSigned(ByteView file) {
    return file.size() >= headerSize &&
           std::equal(signature.begin(), signature.end(), file.begin());
}

/// \return Nothing when the numbers do not fit one another and the file.
std::optional<Trailer> readTrailer(ByteView file) {
    constexpr std::size_t widthsAt = 6;
    constexpr std::size_t numbersAt = 8;
    constexpr std::size_t number = 8;
    if (!isSigned(file) || file.size() < headerSize + trailerSize)
        return std::nullopt;
    const std::size_t end = file.size() - trailerSize;
    const std::uint8_t* bytes = file.data() + end;
    Trailer trailer;
    trailer.placeWidth = bytes[widthsAt];
    trailer.nodeWidth = bytes[widthsAt + 1];
    const std::uint64_t count = readBigEndian(bytes + numbersAt, number);
    const std::uint64_t root = readBigEndian(bytes + numbersAt + number, number);
    const std::uint64_t table = readBigEndian(bytes + numbersAt + 2 * number, number);
    const auto isWidth = [](std::size_t width) { return width >= 1 && width <= number; };
    if (!isWidth(trailer.placeWidth) || !isWidth(trailer.nodeWidth) || table < headerSize ||
        table > end || count > (end - table) / trailer.placeWidth || root >= count)
        return std::nullopt;
    trailer.count = static_cast<std::size_t>(count);
    trailer.root = static_cast<std::size_t>(root);
    trailer.table = static_cast<std::size_t>(table);
    return trailer;
}

/// Copies the values that can be reached from the outermost one, container by container.
class Reading {
public:
    Reading(ByteView toRead, const Trailer& where, Objects& toFill)
        : file(toRead), trailer(where), objects(toFill), singles(where.count, none) {}

    bool run() {
        objects.root = read(trailer.root, 1);
        while (!open.empty()) {
            if (open.back().next == open.back().count)
                open.pop_back();
            else if (!readNext())
                return false;
        }
        return objects.root != none && objects.kind(objects.root) == Kind::Dictionary;
    }

private:
    /// A container whose contents are being read.
    struct Open {
        Node node = none;
        const std::uint8_t* keys = nullptr; // of a dictionary
        const std::uint8_t* values = nullptr;
        std::size_t next = 0;
        std::size_t count = 0;
    };

    /// Reads an entry or element of the innermost container that is not complete.
    bool readNext() {
        const std::size_t place = open.back().next++ * trailer.nodeWidth;
        const Open from = open.back();
        const Node key = from.keys ? readKey(from.keys + place) : none;
        if (from.keys && key == none)
            return false;
        const Node value = read(number(from.values + place), open.size() + 1);
        return value != none && objects.append(from.node, key, value);
    }

    Node readKey(const std::uint8_t* reference) {
        const Node key = read(number(reference), open.size() + 1);
        return key != none && objects.kind(key) == Kind::String ? key : none;
    }

    [[nodiscard]] std::uint64_t number(const std::uint8_t* reference) const {
        return readBigEndian(reference, trailer.nodeWidth);
    }

    /// \return `none` for what cannot be.
    Node read(std::uint64_t number, std::size_t depth) {
        if (number >= trailer.count)
            return none;
        if (singles[number] != none)
            return singles[number];
        const std::uint64_t place = readBigEndian(
            file.data() + trailer.table + number * trailer.placeWidth, trailer.placeWidth);
        if (place < headerSize || place >= trailer.table)
            return none;
        const ByteView bytes = file.subspan(place, trailer.table - place);
        const std::optional<Head> head = readHead(bytes);
        if (!head)
            return none;
        if (head->marker == Marker::Array || head->marker == Marker::Dictionary)
            return openContainer(bytes, *head, depth);
        return singles[number] = objects.addScalar([&](Bytes& log) {
            log.insert(log.end(), bytes.begin(),
                       bytes.begin() + static_cast<std::ptrdiff_t>(head->size));
        });
    }

    /// Containers that are named more than once become as many.
    Node openContainer(ByteView bytes, const Head& head, std::size_t depth) {
        const bool dictionary = head.marker == Marker::Dictionary;
        const std::size_t lists = dictionary ? 2 : 1;
        if (head.count > (bytes.size() - head.length) / trailer.nodeWidth / lists)
            return none;
        Open opened;
        opened.node = objects.addContainer(kindOf(head.marker), depth);
        if (opened.node == none)
            return none;
        opened.count = head.count;
        opened.values = bytes.data() + head.length;
        if (dictionary) {
            opened.keys = opened.values;
            opened.values += head.count * trailer.nodeWidth;
        }
        open.push_back(opened);
        return opened.node;
    }

    ByteView file;
    Trailer trailer;
    Objects& objects;
    std::vector<Node> singles; // by their number in the file, once they have been read
    std::vector<Open> open;
};

} // namespace

bool readBinary(ByteView file, Objects& objects) {
    const std::optional<Trailer> trailer = readTrailer(file);
    return trailer && Reading(file, *trailer, objects).run();
}

bool readFile(ByteView file, Objects& objects) {
    if (file.size() > objects.limits.bytes)
        return false;
    return isSigned(file) ? readBinary(file, objects) : readXml(file, objects);
}

} // namespace Korvex::PropertyList
