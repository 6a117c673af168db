#pragma once

#include "platform/propertylist/objects.h"
#include "platform/propertylist/tree.h"

#include <memory>

namespace Korvex::PropertyList {

/// A property list: a dictionary and all in it.
///
/// One thread at a time uses a document, also for looking: it remembers what it has looked up.
class Document final : public Editor {
public:
    /// An empty one.
    explicit Document(const Limits& limits = {});

    /// Reads a file of either format.
    /// \return Null when it is damaged, more than the limits allow, or no dictionary. May throw
    /// `std::bad_alloc`.
    [[nodiscard]] static std::unique_ptr<Document> read(ByteView file, const Limits& limits = {});

    [[nodiscard]] Node top() const override;
    [[nodiscard]] Kind kind(Node node) const override;
    [[nodiscard]] std::size_t count(Node container) const override;
    [[nodiscard]] Node member(Node dictionary, QStringView name) const override;
    [[nodiscard]] Node element(Node array, std::size_t index) const override;
    [[nodiscard]] Entry entry(Node dictionary, std::size_t index) const override;
    [[nodiscard]] CFTypeRef copy(Node node) const override;
    [[nodiscard]] Node makeDictionary(Node dictionary, QStringView name) override;
    [[nodiscard]] bool set(Node dictionary, QStringView name, CFTypeRef value) override;
    void remove(Node dictionary, QStringView name) override;

    /// Whether anything was changed since it was read or written.
    [[nodiscard]] bool isChanged() const { return changed; }

    /// Has the two parts of the file written, and is unchanged afterwards.
    /// \param write Takes both parts and tells whether they were written.
    /// \return False when they were not, or are more than the limits allow.
    template <class Write>
    [[nodiscard]] bool write(Write writeParts) {
        objects.tidy();
        const Bytes rest = objects.tail();
        if (objects.head().size() + rest.size() > objects.limits.bytes ||
            !writeParts(ByteView(objects.head()), ByteView(rest)))
            return false;
        changed = false;
        return true;
    }

private:
    [[nodiscard]] bool is(Node node, Kind kind) const;
    bool put(Node dictionary, QStringView name, Node value);

    mutable Objects objects; // finding a name may set up the way to find it
    bool changed = false;
};

} // namespace Korvex::PropertyList
