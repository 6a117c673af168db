#include "fakes/preferences.h"

#include "platform/corefoundation/object.h"

#include <KxQts/corefoundation.h>

#include <algorithm>

namespace KxTest {

using Korvex::PropertyList::Editor;
using Korvex::PropertyList::Kind;
using Korvex::PropertyList::Node;
using Korvex::PropertyList::none;

namespace {

/// A value and those in it, in the plainest form there is.
struct Value {
    Kind kind = Kind::Dictionary;
    std::shared_ptr<const void> single;
    std::vector<std::pair<QString, std::shared_ptr<Value>>> entries; // unnamed in an array
};

QString textOf(CFTypeRef object) {
    const auto* string = static_cast<CFStringRef>(object);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(CFStringGetCharactersPtr(string)),
                              CFStringGetLength(string));
}

CFStringRef stringOf(const QString& text) {
    return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(text.utf16()),
                                        text.size());
}

Kind kindOf(CFTypeRef object) {
    const std::map<CFTypeID, Kind> kinds{{CFStringGetTypeID(), Kind::String},
                                         {CFBooleanGetTypeID(), Kind::Boolean},
                                         {CFDataGetTypeID(), Kind::Data},
                                         {CFNumberGetTypeID(), Kind::Number},
                                         {CFDateGetTypeID(), Kind::Other},
                                         {CFArrayGetTypeID(), Kind::Array},
                                         {CFDictionaryGetTypeID(), Kind::Dictionary}};
    const auto found = kinds.find(CFGetTypeID(object));
    return found == kinds.end() ? Kind::None : found->second;
}

/// \return Null for what is no property list.
std::shared_ptr<Value> valueOf(CFTypeRef object) {
    auto made = std::make_shared<Value>();
    made->kind = kindOf(object);
    if (made->kind == Kind::None)
        return nullptr;
    if (made->kind == Kind::Array) {
        const auto* array = static_cast<CFArrayRef>(object);
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i)
            made->entries.emplace_back(QString(), valueOf(CFArrayGetValueAtIndex(array, i)));
    } else if (made->kind == Kind::Dictionary) {
        const auto* dictionary = static_cast<CFDictionaryRef>(object);
        const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
        std::vector<const void*> keys(count);
        std::vector<const void*> values(count);
        CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
        for (std::size_t i = 0; i < count; ++i) {
            if (CFGetTypeID(keys[i]) != CFStringGetTypeID())
                return nullptr;
            made->entries.emplace_back(textOf(keys[i]), valueOf(values[i]));
        }
    } else {
        made->single.reset(CFRetain(object), CFRelease);
    }
    const bool complete = std::all_of(made->entries.begin(), made->entries.end(),
                                      [](const auto& entry) { return entry.second != nullptr; });
    return complete ? made : nullptr;
}

CFTypeRef objectOf(const Value& value) {
    if (value.single)
        return CFRetain(value.single.get());
    CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (const auto& [name, entry] : value.entries) {
        const Korvex::Cf::Owned<CFTypeRef> object(objectOf(*entry));
        const Korvex::Cf::Owned<CFStringRef> key(stringOf(name));
        CFArrayAppendValue(array, object.get());
        CFDictionarySetValue(dictionary, key.get(), object.get());
    }
    const bool isArray = value.kind == Kind::Array;
    CFRelease(isArray ? CFTypeRef(dictionary) : array);
    return isArray ? CFTypeRef(array) : dictionary;
}

std::shared_ptr<Value> copyOf(const Value& value) {
    auto made = std::make_shared<Value>(value);
    for (auto& entry : made->entries)
        entry.second = copyOf(*entry.second);
    return made;
}

} // namespace

class ScriptedPreferences::Values : public Editor {
public:
    Values() : root(std::make_shared<Value>()) {}
    Values(const Values& other) : Editor(other), root(copyOf(*other.root)) {}

    Node top() const override { return numberOf(root.get()); }
    Kind kind(Node node) const override { return node == none ? Kind::None : at(node).kind; }
    std::size_t count(Node node) const override {
        return node == none ? 0 : at(node).entries.size();
    }
    Node member(Node node, QStringView name) const override {
        if (kind(node) != Kind::Dictionary)
            return none;
        const auto found = find(node, name);
        return found == at(node).entries.end() ? none : numberOf(found->second.get());
    }
    Node element(Node node, std::size_t index) const override {
        return kind(node) == Kind::Array && index < count(node)
                   ? numberOf(at(node).entries[index].second.get())
                   : none;
    }
    Entry entry(Node node, std::size_t index) const override {
        if (kind(node) != Kind::Dictionary || index >= count(node))
            return {};
        const auto& [name, value] = at(node).entries[index];
        return {name, numberOf(value.get())};
    }
    CFTypeRef copy(Node node) const override { return node == none ? nullptr : objectOf(at(node)); }

    Node makeDictionary(Node node, QStringView name) override {
        const Node found = member(node, name);
        if (kind(found) == Kind::Dictionary)
            return found;
        return put(node, name, std::make_shared<Value>());
    }
    bool set(Node node, QStringView name, CFTypeRef value) override {
        const std::shared_ptr<Value> made = value ? valueOf(value) : nullptr;
        return made && put(node, name, made) != none;
    }
    void remove(Node node, QStringView name) override {
        if (kind(node) != Kind::Dictionary)
            return;
        const auto found = find(node, name);
        if (found != at(node).entries.end())
            at(node).entries.erase(found);
    }

private:
    Value& at(Node node) const { return *numbered[node]; }
    Node numberOf(Value* value) const {
        numbered.push_back(value);
        return static_cast<Node>(numbered.size() - 1);
    }
    std::vector<std::pair<QString, std::shared_ptr<Value>>>::iterator find(Node node,
                                                                           QStringView name) const {
        auto& entries = at(node).entries;
        return std::find_if(entries.begin(), entries.end(),
                            [&](const auto& entry) { return entry.first == name; });
    }
    Node put(Node node, QStringView name, const std::shared_ptr<Value>& value) {
        if (kind(node) != Kind::Dictionary)
            return none;
        const auto found = find(node, name);
        if (found == at(node).entries.end())
            at(node).entries.emplace_back(name.toString(), value);
        else
            found->second = value;
        return numberOf(value.get());
    }

    std::shared_ptr<Value> root;
    mutable std::vector<Value*> numbered;
};

ScriptedPreferences::ScriptedPreferences() = default;
ScriptedPreferences::~ScriptedPreferences() = default;

bool ScriptedPreferences::synchronize(const Domain& domain) {
    return read(domain, [](const Korvex::PropertyList::Tree&) {});
}

bool ScriptedPreferences::read(const Domain& domain, const Reader& reader) {
    if (onRead)
        onRead();
    std::shared_ptr<const Values> values;
    {
        const std::lock_guard guard(lock);
        if (domain.id.isEmpty() || damaged.contains(domain.id))
            return false;
        const auto found = stored.find({domain.id, domain.scope});
        values = found == stored.end() ? std::make_shared<const Values>() : found->second;
        reader(*values);
    }
    return true;
}

bool ScriptedPreferences::change(const Domain& domain, const Changer& changer) {
    const std::lock_guard guard(lock);
    if (domain.id.isEmpty() || damaged.contains(domain.id) || readOnly.contains(domain.id))
        return false;
    const auto found = stored.find({domain.id, domain.scope});
    auto changed = found == stored.end() ? std::make_shared<Values>()
                                         : std::make_shared<Values>(*found->second);
    if (!changer(*changed))
        return false;
    stored.insert_or_assign({domain.id, domain.scope}, changed);
    ++changes;
    return true;
}

std::optional<QString> ScriptedPreferences::folder(Domain::Scope) {
    return folderIs;
}

} // namespace KxTest
