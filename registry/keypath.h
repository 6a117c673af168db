#pragma once

#include "platform/propertylist/tree.h"

#include <QStringView>

#include <limits>

/// How paths of registry keys lead to values.
namespace Korvex::KeyPath {

/// A path's first name, and what follows.
struct Split {
    QStringView head;
    QStringView rest;
    bool hasSlash = false; ///< Whether the path has one anywhere
};

inline Split split(QStringView path) {
    const qsizetype slash = path.indexOf(QLatin1Char('/'));
    if (slash > 0)
        return {path.left(slash), path.mid(slash + 1), true};
    return {path, {}, slash == 0};
}

inline bool isContainer(PropertyList::Kind kind) {
    return kind == PropertyList::Kind::Dictionary || kind == PropertyList::Kind::Array;
}

/// One name's step into a container. `Values` is a tree, or looks like one.
template <class Values>
auto step(const Values& values, typename Values::Value container, QStringView name) {
    if (values.kind(container) == PropertyList::Kind::Dictionary)
        return values.member(container, name);
    bool isNumber = false;
    const int index = name.toInt(&isNumber);
    return isNumber && index >= 0 ? values.element(container, static_cast<std::size_t>(index))
                                  : Values::nothing;
}

/// Follows a path below a container. A single value ends it wherever it is met.
/// \param any Whether a container may be the result, at the end of the path.
template <class Values>
typename Values::Value follow(const Values& values, typename Values::Value container,
                              QStringView path, bool any) {
    while (!path.isEmpty()) {
        const Split next = split(path);
        const auto value = step(values, container, next.head);
        if (value == Values::nothing || !isContainer(values.kind(value)))
            return value;
        // A name that begins with a slash never leads to a container.
        if (any && !next.hasSlash)
            return value;
        container = value;
        path = next.rest;
    }
    return Values::nothing;
}

} // namespace Korvex::KeyPath
