#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/scalars.h"
#include "platform/corefoundation/string.h"
#include "platform/propertylist/encoder.h"

#include <bit>
#include <new>

namespace Korvex::PropertyList {

namespace {

CFTypeRef makeInteger(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::size_t half = sizeof(std::int64_t);
    if (size == 2 * half)
        return Cf::makeInteger(static_cast<std::int64_t>(readBigEndian(bytes + half, half)),
                               static_cast<std::int64_t>(readBigEndian(bytes, half)));
    const auto value = static_cast<std::int64_t>(readBigEndian(bytes, size));
    return Cf::makeInteger(value, value < 0 ? -1 : 0);
}

CFTypeRef makeReal(const std::uint8_t* bytes, std::size_t size) {
    const std::uint64_t bits = readBigEndian(bytes, size);
    if (size == sizeof(float)) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        return CFNumberCreate(nullptr, kCFNumberFloat32Type, &value);
    }
    return CFNumberCreate(nullptr, kCFNumberFloat64Type, &bits);
}

CFTypeRef makeSingle(const std::uint8_t* bytes) {
    const Head head = knownHead(bytes);
    const std::uint8_t* contents = bytes + head.length;
    const std::size_t size = head.size - head.length;
    switch (head.marker) {
    case Marker::Constant:
        return *bytes == trueByte ? kCFBooleanTrue : kCFBooleanFalse;
    case Marker::Integer:
        return makeInteger(contents, size);
    case Marker::Real:
        return makeReal(contents, size);
    case Marker::Date:
        return CFDateCreate(nullptr, std::bit_cast<double>(readBigEndian(contents, size)));
    case Marker::Data:
        return Cf::makeBytes(Cf::Type::Data, contents, static_cast<CFIndex>(size));
    case Marker::Uid:
        return Cf::makeBytes(Cf::Type::Uid, contents, static_cast<CFIndex>(size));
    default:
        return Cf::makeString(textAt(bytes));
    }
}

CFTypeRef notNull(CFTypeRef made) {
    if (!made)
        throw std::bad_alloc();
    return made;
}

/// Makes an object of a value and what is in it, one container after the other.
class Decoding {
public:
    explicit Decoding(Objects& toRead) : objects(toRead) {}

    CFTypeRef run(Node node) {
        Cf::Owned<CFTypeRef> made(make(node));
        while (!waiting.empty()) {
            const Waiting next = waiting.back();
            waiting.pop_back();
            if (next.array)
                fill(*next.array, objects.container(next.node));
            else
                fill(*next.dictionary, objects.container(next.node));
        }
        return made.release();
    }

private:
    struct Waiting {
        __CFArray* array;
        __CFDictionary* dictionary;
        Node node;
    };

    CFTypeRef make(Node node) {
        if (!objects.isContainer(node))
            return notNull(makeSingle(objects.scalar(node)));
        Waiting next{nullptr, nullptr, node};
        waiting.reserve(waiting.size() + 1);
        const bool array = objects.kind(node) == Kind::Array;
        CFTypeRef made = array ? notNull(next.array = Cf::makeArray(false))
                               : notNull(next.dictionary = Cf::makeDictionary(false));
        waiting.push_back(next);
        return made;
    }

    void fill(__CFArray& array, const Container& from) {
        array.values.reserve(from.values.size());
        for (const Node value : from.values)
            Cf::adopt(array, make(value));
    }

    void fill(__CFDictionary& dictionary, Container& from) {
        objects.check(from);
        dictionary.entries.reserve(from.values.size());
        for (std::size_t i = 0; i < from.values.size(); ++i) {
            Cf::Owned<CFTypeRef> key(make(from.keys[i]));
            CFTypeRef value = make(from.values[i]);
            Cf::adopt(dictionary, key.release(), value);
        }
    }

    Objects& objects;
    std::vector<Waiting> waiting;
};

} // namespace

CFTypeRef makeObject(Objects& objects, Node node) {
    try {
        return Decoding(objects).run(node);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace Korvex::PropertyList
