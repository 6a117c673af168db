#include "platform/propertylist/encoder.h"

#include "platform/corefoundation/containers.h"
#include "platform/corefoundation/scalars.h"
#include "platform/corefoundation/string.h"

namespace Korvex::PropertyList {

namespace {

using Cf::Type;

ByteView bytesOf(const __CFData& data) {
    return {data.bytes, static_cast<std::size_t>(data.count)};
}

void appendNumber(Bytes& bytes, const __CFNumber& number) {
    if (number.isReal())
        appendReal(bytes, number.real, number.numberType == kCFNumberFloat32Type);
    else if (number.fits64())
        appendInteger(bytes, number.low);
    else
        appendWideInteger(bytes, number.low, number.high);
}

/// \return `none` for what a property list cannot hold.
Node addSingle(Objects& objects, const Cf::Object& object) {
    const auto add = [&](auto append) { return objects.addScalar(append); };
    switch (object.type) {
    case Type::String:
        return objects.addText(Cf::units(static_cast<const __CFString*>(&object)));
    case Type::Number:
        return add([&](Bytes& to) { appendNumber(to, static_cast<const __CFNumber&>(object)); });
    case Type::Boolean:
        return add(
            [&](Bytes& to) { to.push_back(&object == kCFBooleanTrue ? trueByte : falseByte); });
    case Type::Data:
        return add(
            [&](Bytes& to) { appendData(to, bytesOf(static_cast<const __CFData&>(object))); });
    case Type::Uid:
        return add(
            [&](Bytes& to) { appendUid(to, bytesOf(static_cast<const __CFData&>(object))); });
    case Type::Date:
        return add([&](Bytes& to) { appendDate(to, static_cast<const __CFDate&>(object).time); });
    default:
        return none;
    }
}

/// Adds an object and what is in it, one container after the other.
class Encoding {
public:
    explicit Encoding(Objects& toFill) : objects(toFill) {}

    Node run(const Cf::Object& object, std::size_t depth) {
        const Node added = add(object, depth);
        bool complete = added != none;
        while (complete && !waiting.empty()) {
            const Waiting next = waiting.back();
            waiting.pop_back();
            complete = next.object->type == Type::Array
                           ? fill(next, static_cast<const __CFArray&>(*next.object))
                           : fill(next, static_cast<const __CFDictionary&>(*next.object));
        }
        if (complete)
            return added;
        if (added != none)
            objects.discard(added);
        return none;
    }

private:
    struct Waiting {
        const Cf::Object* object;
        Node node;
    };

    Node add(const Cf::Object& object, std::size_t depth) {
        const bool array = object.type == Type::Array;
        if (!array && object.type != Type::Dictionary)
            return addSingle(objects, object);
        const Node node = objects.addContainer(array ? Kind::Array : Kind::Dictionary, depth);
        if (node != none)
            waiting.push_back({&object, node});
        return node;
    }

    bool put(Node container, Node key, const void* value) {
        const Node node =
            value ? add(*Cf::object(value), objects.container(container).depth + 1U) : none;
        if (node != none && objects.append(container, key, node))
            return true;
        // What is in no container yet is freed here, the rest with the whole.
        if (key != none)
            objects.discard(key);
        if (node != none)
            objects.discard(node);
        return false;
    }

    bool fill(const Waiting& into, const __CFArray& array) {
        for (const void* value : array.values) {
            if (!put(into.node, none, value))
                return false;
        }
        return true;
    }

    bool fill(const Waiting& into, const __CFDictionary& dictionary) {
        for (const __CFDictionary::Entry& entry : dictionary.entries) {
            if (!Cf::isA(entry.key, Type::String))
                return false;
            const Node key = addSingle(objects, *Cf::object(entry.key));
            if (!put(into.node, key, entry.value))
                return false;
        }
        return true;
    }

    Objects& objects;
    std::vector<Waiting> waiting;
};

} // namespace

Node addObject(Objects& objects, CFTypeRef object, std::size_t depth) {
    return object ? Encoding(objects).run(*Cf::object(object), depth) : none;
}

} // namespace Korvex::PropertyList
