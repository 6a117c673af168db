#pragma once

#include "platform/propertylist/tree.h"
#include "registry/keypath.h"

namespace Korvex {

/// A stored property list as \ref KeyPath::follow takes values.
struct TreeValues {
    using Value = PropertyList::Node;
    static constexpr Value nothing = PropertyList::none;

    [[nodiscard]] PropertyList::Kind kind(Value value) const { return tree.kind(value); }
    [[nodiscard]] Value member(Value dictionary, QStringView name) const {
        return tree.member(dictionary, name);
    }
    [[nodiscard]] Value element(Value array, std::size_t index) const {
        return tree.element(array, index);
    }

    const PropertyList::Tree& tree;
};

/// What a path of a domain leads to.
struct FoundValue {
    PropertyList::Node node = PropertyList::none;
    bool isTop = false; ///< Whether it is a top-level value itself, not something inside one
};

/// \param any Whether a container may be the result.
inline FoundValue findValue(const PropertyList::Tree& tree, QStringView path, bool any) {
    if (path.isEmpty())
        return {};
    const KeyPath::Split first = KeyPath::split(path);
    const PropertyList::Node top = tree.member(tree.top(), first.head);
    if (!KeyPath::isContainer(tree.kind(top)))
        return {top, true};
    if (first.rest.isEmpty())
        return {any ? top : PropertyList::none, true};
    return {KeyPath::follow(TreeValues{tree}, top, first.rest, any), false};
}

/// Sets or removes (null) the value of a path that is not empty.
inline bool putValue(PropertyList::Editor& editor, QStringView path, CFTypeRef value) {
    PropertyList::Node in = editor.top();
    KeyPath::Split next = KeyPath::split(path);
    while (!next.rest.isEmpty()) {
        in = editor.makeDictionary(in, next.head);
        if (in == PropertyList::none)
            return false;
        next = KeyPath::split(next.rest);
    }
    if (value)
        return editor.set(in, next.head, value);
    editor.remove(in, next.head);
    return true;
}

} // namespace Korvex
