#pragma once

#include "platform/propertylist/limits.h"
#include "platform/propertylist/scalars.h"
#include "platform/propertylist/tree.h"
#include "platform/slottable.h"

#include <deque>
#include <vector>

namespace Korvex::PropertyList {

/// An array or a dictionary: the numbers of what is in it.
struct Container {
    Kind kind = Kind::None; ///< `None`: not in use
    std::uint16_t depth = 0;
    std::vector<Node> keys; ///< Of a dictionary; strings
    std::vector<Node> values;
    SlotTable names; ///< Where a dictionary's names stand, once there are many
    bool hasNames = false;
    bool isChecked = false; ///< No two entries have the same name
};

/// The values of a property list, nearly as a binary file holds them: the single values as the very
/// bytes of the file, one behind the other, and the containers as lists of numbers.
///
/// Changing one value therefore costs nothing for the others, and writing the file is copying. What
/// gives values up leaves holes behind, which are wiped at once and closed when they have become
/// many. What adds may throw `std::bad_alloc`.
class Objects {
public:
    explicit Objects(const Limits& toKeep);

    /// \name Adding. What is added belongs to no container yet.
    /// @{

    /// Adds a single value: \a append appends its bytes.
    template <class Append>
    Node addScalar(Append append) {
        const std::size_t place = log.size();
        append(log);
        return newNode(static_cast<std::uint32_t>(place));
    }
    Node addText(QStringView text);
    /// \param depth The level of the container, from 1 on. \return `none` when that is too deep.
    Node addContainer(Kind kind, std::size_t depth);
    /// Puts a value behind the others of a container. \param key `none` for an array.
    /// \return False when there are too many.
    [[nodiscard]] bool append(Node container, Node key, Node value);
    /// @}

    /// Replaces a value of a container.
    void replace(Container& container, std::size_t place, Node value);
    /// Takes an entry out of a dictionary; the last one takes its place.
    void removeEntry(Container& dictionary, std::size_t place);
    /// Frees a value that belongs to no container, and all in it.
    void discard(Node node);

    [[nodiscard]] bool isContainer(Node node) const {
        return (nodes[node].place & containerBit) != 0;
    }
    [[nodiscard]] Container& container(Node node) {
        return containers[nodes[node].place & ~containerBit];
    }
    [[nodiscard]] const Container& container(Node node) const {
        return containers[nodes[node].place & ~containerBit];
    }
    [[nodiscard]] const std::uint8_t* scalar(Node node) const {
        return log.data() + nodes[node].place;
    }
    [[nodiscard]] Kind kind(Node node) const;
    [[nodiscard]] std::size_t size() const { return nodes.size(); }

    /// The place of a name in a dictionary, or `none`.
    [[nodiscard]] std::uint32_t find(Container& dictionary, QStringView name);
    /// Sees to it that no two entries have the same name: of such the last one counts.
    void check(Container& dictionary);

    /// Closes the holes when they have become many.
    void tidy();

    /// The beginning of the file: its header and all single values.
    [[nodiscard]] const Bytes& head() const { return log; }
    /// The rest of the file, behind \ref head.
    [[nodiscard]] Bytes tail() const;

    Limits limits;
    Node root = none;

private:
    struct Place {
        std::uint32_t place = 0; ///< In the log, or the number of a container
        std::uint32_t uses = 0;  ///< How many containers' entries name it
    };

    static constexpr std::uint32_t containerBit = 0x80000000;

    Node newNode(std::uint32_t place);
    void dropReferences(std::span<const Node> dropped);
    void freeAll(std::vector<Node>& waiting);
    void letGo(Node node, std::vector<Node>& waiting);
    void freeNode(Node node, std::vector<Node>& waiting);
    std::uint32_t hole();
    void close();
    void buildNames(Container& dictionary);

    Bytes log;
    std::vector<Place> nodes;
    std::vector<Node> freeNodes;
    std::deque<Container> containers;
    std::vector<std::uint32_t> freeContainers;
    std::size_t entries = 0; ///< Of all containers
    std::size_t wasted = 0;  ///< Bytes of the log that are holes
    std::uint32_t holePlace = 0;
};

} // namespace Korvex::PropertyList
