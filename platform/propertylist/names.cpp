#include "platform/corefoundation/string.h"
#include "platform/propertylist/objects.h"

#include <utility>

// How a dictionary's names are found: one by one while they are few, by their hash later.

namespace Korvex::PropertyList {

namespace {

constexpr std::size_t fewNames = 8;

} // namespace

std::uint32_t Objects::find(Container& in, QStringView name) {
    check(in);
    if (in.hasNames)
        return in.names.find(Cf::hashOf(name), [&](std::uint32_t place) {
            return textEquals(scalar(in.keys[place]), name);
        });
    for (std::size_t place = 0; place < in.keys.size(); ++place) {
        if (textEquals(scalar(in.keys[place]), name))
            return static_cast<std::uint32_t>(place);
    }
    return none;
}

void Objects::check(Container& in) {
    if (in.isChecked && (in.hasNames || in.keys.size() <= fewNames))
        return;
    in.isChecked = true;
    if (in.keys.size() < 2)
        return;
    buildNames(in);
    if (in.keys.size() <= fewNames) {
        in.names.clear();
        in.hasNames = false;
    }
}

void Objects::buildNames(Container& in) {
    in.names.clear();
    in.names.reserve(in.keys.size());
    in.hasNames = true;
    std::vector<Node> gone;
    std::size_t kept = 0;
    for (std::size_t place = 0; place < in.keys.size(); ++place) {
        const QString name = textAt(scalar(in.keys[place]));
        const std::uint32_t hash = Cf::hashOf(name);
        const std::uint32_t earlier = in.names.find(hash, [&](std::uint32_t candidate) {
            return textEquals(scalar(in.keys[candidate]), name);
        });
        if (earlier == none) {
            in.names.insert(hash, static_cast<std::uint32_t>(kept));
            in.keys[kept] = in.keys[place];
            in.values[kept++] = in.values[place];
            continue;
        }
        std::swap(in.values[earlier], in.values[place]);
        gone.insert(gone.end(), {in.keys[place], in.values[place]});
    }
    entries -= in.keys.size() - kept;
    in.keys.resize(kept);
    in.values.resize(kept);
    dropReferences(gone);
}

} // namespace Korvex::PropertyList
