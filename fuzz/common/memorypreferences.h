#pragma once

#include "common/require.h"
#include "platform/preferences.h"
#include "platform/propertylist/document.h"
#include "platform/replaceable.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace KxFuzz {

/// Preferences as the system keeps them, but for the disk: every domain is the bytes of a file,
/// which every change writes anew. They are in force while they live.
class MemoryPreferences : public Korvex::Preferences {
public:
    using Domain = Korvex::PreferenceDomain;
    using Document = Korvex::PropertyList::Document;

    /// \param toStart What the file of every domain holds that was not changed.
    explicit MemoryPreferences(const std::string& toStart) : start(toStart.begin(), toStart.end()) {
        limits.entries = 10000; // so that one input takes no time worth mentioning
    }

    [[nodiscard]] bool synchronize(const Domain& domain) override {
        return open(domain) != nullptr;
    }

    bool read(const Domain& domain, const Reader& reader) override {
        const std::shared_ptr<Document> document = open(domain);
        if (document)
            reader(*document);
        return document != nullptr;
    }

    [[nodiscard]] bool change(const Domain& domain, const Changer& changer) override {
        const std::shared_ptr<Document> document = open(domain);
        files.erase(domain); // the next one starts with the bytes again
        if (!document || !changer(*document))
            return false;
        Korvex::PropertyList::Bytes file;
        const auto keep = [&](Korvex::PropertyList::ByteView head,
                              Korvex::PropertyList::ByteView tail) {
            file.assign(head.begin(), head.end());
            file.insert(file.end(), tail.begin(), tail.end());
            return true;
        };
        if (!document->write(keep))
            return false;
        bytes[domain] = file;
        require(open(domain) != nullptr); // what was written can be read
        return true;
    }

    [[nodiscard]] std::optional<QString> folder(Domain::Scope) override { return std::nullopt; }

    /// What a domain holds; null when its file is damaged.
    [[nodiscard]] std::shared_ptr<Document> open(const Domain& domain) {
        std::shared_ptr<Document>& file = files[domain];
        if (file)
            return file;
        const auto changed = bytes.find(domain);
        const Korvex::PropertyList::Bytes& read = changed == bytes.end() ? start : changed->second;
        file = read.empty() ? std::make_shared<Document>(limits)
                            : std::shared_ptr<Document>(Document::read(read, limits));
        return file;
    }

private:
    Korvex::PropertyList::Bytes start;
    Korvex::PropertyList::Limits limits;
    template <class Value>
    using Table = std::unordered_map<Domain, Value, Korvex::PreferenceDomainHash>;

    Table<Korvex::PropertyList::Bytes> bytes;
    Table<std::shared_ptr<Document>> files;
    Korvex::Replacement<Korvex::Preferences> inForce{*this};
};

} // namespace KxFuzz
