#include "platform/propertylist/document.h"

#include "platform/propertylist/encoder.h"
#include "platform/propertylist/reader.h"

namespace Korvex::PropertyList {

Document::Document(const Limits& limits) : objects(limits) {
    objects.root = objects.addContainer(Kind::Dictionary, 1);
}

std::unique_ptr<Document> Document::read(ByteView file, const Limits& limits) {
    Objects read(limits);
    if (!readFile(file, read))
        return nullptr;
    auto document = std::make_unique<Document>(limits);
    document->objects = std::move(read);
    return document;
}

bool Document::is(Node node, Kind kind) const {
    return node != none && objects.kind(node) == kind;
}

Node Document::top() const {
    return objects.root;
}

Kind Document::kind(Node node) const {
    return node == none ? Kind::None : objects.kind(node);
}

std::size_t Document::count(Node container) const {
    if (is(container, Kind::Dictionary))
        objects.check(objects.container(container));
    else if (!is(container, Kind::Array))
        return 0;
    return objects.container(container).values.size();
}

Node Document::member(Node dictionary, QStringView name) const {
    if (!is(dictionary, Kind::Dictionary))
        return none;
    Container& in = objects.container(dictionary);
    const std::uint32_t place = objects.find(in, name);
    return place == none ? none : in.values[place];
}

Node Document::element(Node array, std::size_t index) const {
    return is(array, Kind::Array) && index < count(array) ? objects.container(array).values[index]
                                                          : none;
}

Tree::Entry Document::entry(Node dictionary, std::size_t index) const {
    if (!is(dictionary, Kind::Dictionary) || index >= count(dictionary))
        return {};
    const Container& in = objects.container(dictionary);
    return {textAt(objects.scalar(in.keys[index])), in.values[index]};
}

CFTypeRef Document::copy(Node node) const {
    return node == none ? nullptr : makeObject(objects, node);
}

bool Document::put(Node dictionary, QStringView name, Node value) {
    changed = true;
    Container& in = objects.container(dictionary);
    const std::uint32_t place = objects.find(in, name);
    if (place != none) {
        objects.replace(in, place, value);
        return true;
    }
    const Node key = objects.addText(name);
    if (objects.append(dictionary, key, value))
        return true;
    objects.discard(key);
    objects.discard(value);
    return false;
}

Node Document::makeDictionary(Node dictionary, QStringView name) {
    if (!is(dictionary, Kind::Dictionary))
        return none;
    const Node found = member(dictionary, name);
    if (is(found, Kind::Dictionary))
        return found;
    const Node made =
        objects.addContainer(Kind::Dictionary, objects.container(dictionary).depth + 1U);
    return made != none && put(dictionary, name, made) ? made : none;
}

bool Document::set(Node dictionary, QStringView name, CFTypeRef value) {
    if (!is(dictionary, Kind::Dictionary))
        return false;
    const Node added = addObject(objects, value, objects.container(dictionary).depth + 1U);
    return added != none && put(dictionary, name, added);
}

void Document::remove(Node dictionary, QStringView name) {
    if (!is(dictionary, Kind::Dictionary))
        return;
    Container& in = objects.container(dictionary);
    const std::uint32_t place = objects.find(in, name);
    if (place == none)
        return;
    changed = true;
    objects.removeEntry(in, place);
}

} // namespace Korvex::PropertyList
