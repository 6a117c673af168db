#include "platform/propertylist/objects.h"

#include <algorithm>
#include <array>

namespace Korvex::PropertyList {

namespace {

constexpr std::array<std::uint8_t, 8> fileHeader{'b', 'p', 'l', 'i', 's', 't', '0', '0'};

} // namespace

Objects::Objects(const Limits& toKeep)
    : limits(toKeep), log(fileHeader.begin(), fileHeader.end()) {}

Node Objects::newNode(std::uint32_t place) {
    if (freeNodes.empty()) {
        nodes.push_back({place, 0});
        return static_cast<Node>(nodes.size() - 1);
    }
    const Node node = freeNodes.back();
    freeNodes.pop_back();
    nodes[node] = {place, 0};
    return node;
}

Node Objects::addText(QStringView text) {
    return addScalar([&](Bytes& bytes) { appendText(bytes, text); });
}

Node Objects::addContainer(Kind kind, std::size_t depth) {
    if (depth > limits.depth)
        return none;
    std::uint32_t number = 0;
    if (freeContainers.empty()) {
        number = static_cast<std::uint32_t>(containers.size());
        containers.emplace_back();
    } else {
        number = freeContainers.back();
        freeContainers.pop_back();
    }
    containers[number].kind = kind;
    containers[number].depth = static_cast<std::uint16_t>(depth);
    return newNode(number | containerBit);
}

bool Objects::append(Node node, Node key, Node value) {
    Container& in = container(node);
    if (entries == limits.entries)
        return false;
    in.values.push_back(value);
    ++nodes[value].uses;
    ++entries;
    if (key == none)
        return true;
    in.keys.push_back(key);
    ++nodes[key].uses;
    if (in.hasNames)
        in.names.insert(hashOfText(scalar(key)), static_cast<std::uint32_t>(in.keys.size() - 1));
    return true;
}

void Objects::replace(Container& in, std::size_t place, Node value) {
    const Node old = in.values[place];
    in.values[place] = value;
    ++nodes[value].uses;
    const std::array gone{old};
    dropReferences(gone);
}

void Objects::removeEntry(Container& in, std::size_t place) {
    const std::size_t last = in.values.size() - 1;
    const Node key = in.keys[place];
    const Node value = in.values[place];
    if (in.hasNames) {
        in.names.erase(hashOfText(scalar(key)), static_cast<std::uint32_t>(place));
        if (place != last)
            in.names.move(hashOfText(scalar(in.keys[last])), static_cast<std::uint32_t>(last),
                          static_cast<std::uint32_t>(place));
    }
    in.keys[place] = in.keys[last];
    in.values[place] = in.values[last];
    in.keys.pop_back();
    in.values.pop_back();
    --entries;
    const std::array gone{key, value};
    dropReferences(gone);
}

void Objects::discard(Node node) {
    std::vector<Node> waiting{node};
    freeAll(waiting);
}

void Objects::dropReferences(std::span<const Node> dropped) {
    std::vector<Node> waiting;
    for (const Node node : dropped)
        letGo(node, waiting);
    freeAll(waiting);
}

void Objects::freeAll(std::vector<Node>& waiting) {
    while (!waiting.empty()) {
        const Node next = waiting.back();
        waiting.pop_back();
        freeNode(next, waiting);
    }
}

void Objects::letGo(Node node, std::vector<Node>& waiting) {
    if (--nodes[node].uses == 0)
        waiting.push_back(node);
}

void Objects::freeNode(Node node, std::vector<Node>& waiting) {
    if (isContainer(node)) {
        Container& freed = container(node);
        for (const Node key : freed.keys)
            letGo(key, waiting);
        for (const Node value : freed.values)
            letGo(value, waiting);
        entries -= freed.values.size();
        freed = Container();
        freeContainers.push_back(nodes[node].place & ~containerBit);
    } else {
        // Wiped, because the whole log is written and what was removed is not to be found there.
        const std::size_t size = knownHead(scalar(node)).size;
        std::fill_n(log.begin() + nodes[node].place, size, std::uint8_t(0));
        wasted += size;
    }
    nodes[node] = {hole(), 0};
    freeNodes.push_back(node);
}

/// A value for the numbers that stand for nothing to point to, so that every number in the file
/// stands for something that can be read.
std::uint32_t Objects::hole() {
    if (holePlace == 0) {
        holePlace = static_cast<std::uint32_t>(log.size());
        log.push_back(falseByte);
    }
    return holePlace;
}

Kind Objects::kind(Node node) const {
    return isContainer(node) ? container(node).kind : kindOf(knownHead(scalar(node)).marker);
}

void Objects::tidy() {
    constexpr std::size_t worthwhile = 512;
    constexpr std::size_t tolerated = 4; // a fraction of 1/4
    if (wasted > worthwhile + log.size() / tolerated ||
        freeNodes.size() > worthwhile + nodes.size() / tolerated)
        close();
}

/// Moves everything together and numbers it anew.
void Objects::close() {
    Objects closed(limits);
    closed.log.reserve(log.size() - wasted);
    std::vector<Node> numbers(nodes.size(), none);
    for (const Node node : freeNodes)
        nodes[node].place = holePlace;
    for (Node node = 0; node < nodes.size(); ++node) {
        const Place& old = nodes[node];
        if (old.uses == 0 && node != root)
            continue;
        numbers[node] = static_cast<Node>(closed.nodes.size());
        closed.nodes.push_back(old);
        if (isContainer(node))
            continue;
        closed.nodes.back().place = static_cast<std::uint32_t>(closed.log.size());
        const std::uint8_t* bytes = scalar(node);
        closed.log.insert(closed.log.end(), bytes, bytes + knownHead(bytes).size);
    }
    for (Container& in : containers) {
        for (std::vector<Node>* list : {&in.keys, &in.values})
            std::transform(list->begin(), list->end(), list->begin(),
                           [&](Node old) { return numbers[old]; });
    }
    root = numbers[root];
    log.swap(closed.log);
    nodes.swap(closed.nodes);
    freeNodes.clear();
    wasted = 0;
    holePlace = 0;
}

} // namespace Korvex::PropertyList
