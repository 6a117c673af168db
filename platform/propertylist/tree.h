#pragma once

#include <KxQts/corefoundation/base.h>

#include <QString>
#include <QStringView>

#include <cstddef>
#include <cstdint>

/// Property lists in the form in which they are kept in files.
namespace Korvex::PropertyList {

/// What a value of a property list is, as far as anyone asks.
enum class Kind : std::uint8_t {
    None, ///< There is no value
    String,
    Boolean,
    Data,
    Number,
    Other, ///< A date or a UID
    Array,
    Dictionary,
};

/// A value's number in its tree. It stands for the same value until the tree changes.
using Node = std::uint32_t;

/// The number of no value.
inline constexpr Node none = 0xFFFFFFFF;

/// A property list whose values are looked at one by one, without making objects of them.
///
/// A tree is looked at by one thread at a time. Every operation takes `none` for a node, and a node
/// of another kind, and finds nothing there.
class Tree {
public:
    struct Entry {
        QString name;
        Node value = none;
    };

    virtual ~Tree() = default;

    /// The dictionary that everything is in.
    [[nodiscard]] virtual Node top() const = 0;
    [[nodiscard]] virtual Kind kind(Node node) const = 0;
    /// How many entries or elements a container has.
    [[nodiscard]] virtual std::size_t count(Node container) const = 0;
    /// A dictionary's value of a name.
    [[nodiscard]] virtual Node member(Node dictionary, QStringView name) const = 0;
    [[nodiscard]] virtual Node element(Node array, std::size_t index) const = 0;
    /// A dictionary's entry by its place. Places stay what they are until the dictionary changes.
    [[nodiscard]] virtual Entry entry(Node dictionary, std::size_t index) const = 0;
    /// An object of the value and all in it, which the caller owns; null for none.
    [[nodiscard]] virtual CFTypeRef copy(Node node) const = 0;
};

/// A property list that is being changed. One that fails has changed in part and is thrown away.
class Editor : public Tree {
public:
    /// The dictionary of a name inside another one. What else has that name, and nothing, is
    /// replaced by an empty dictionary.
    /// \return `none` when it would be nested too deep.
    [[nodiscard]] virtual Node makeDictionary(Node dictionary, QStringView name) = 0;

    /// Sets or adds a value.
    /// \return False when it is no property list or holds or is nested more than a file may.
    [[nodiscard]] virtual bool set(Node dictionary, QStringView name, CFTypeRef value) = 0;

    /// Removes a value; one that is not there is no error.
    virtual void remove(Node dictionary, QStringView name) = 0;
};

} // namespace Korvex::PropertyList
