// INI files that profiles are imported from: whatever the bytes are, reading ends, and what was
// read is what a file made of it holds, as far as a file can hold it.

#include "common/input.h"
#include "common/require.h"
#include "tools/kx/arguments.h"
#include "tools/kx/inifile.h"

#include <algorithm>
#include <optional>
#include <set>

using Kx::IniSection;
using KxFuzz::Input;
using KxFuzz::require;

namespace {

using Sections = std::vector<IniSection>;

std::optional<Sections> read(const QByteArray& bytes) {
    try {
        return Kx::readIni(bytes);
    } catch (const Kx::Failure&) {
        return std::nullopt;
    }
}

std::optional<QString> written(const Sections& sections) {
    try {
        return Kx::iniText(sections);
    } catch (const Kx::Failure&) {
        return std::nullopt;
    }
}

bool same(const Sections& one, const Sections& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const IniSection& a, const IniSection& b) {
                          return a.name == b.name && a.values == b.values;
                      });
}

/// Whether names are there once each, with the section without one in front.
bool isOrderly(const Sections& sections) {
    std::set<QString> names;
    for (const IniSection& section : sections) {
        std::set<QString> values;
        for (const auto& [name, value] : section.values) {
            if (!values.insert(name).second)
                return false;
        }
        if (!names.insert(section.name).second)
            return false;
    }
    return !sections.empty() && sections.front().name.isEmpty();
}

void checkRoundTrip(const Sections& sections) {
    const std::optional<QString> text = written(sections);
    if (!text)
        return;
    const std::optional<Sections> again = read(text->toUtf8());
    require(again && same(*again, sections));
}

/// Any names and values that a store may hold.
Sections sectionsOf(Input& input) {
    Sections sections(1);
    for (std::size_t count = input.below(4); count > 0; --count) {
        sections.back().values.emplace_back(input.qtText(), input.qtText());
        if (const QString name = input.qtText(); !name.isEmpty())
            sections.push_back({name, {}});
    }
    return sections;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Sections sections = sectionsOf(input);
    if (isOrderly(sections))
        checkRoundTrip(sections);
    if (const auto found = read(QByteArray::fromStdString(input.rest()))) {
        require(isOrderly(*found));
        checkRoundTrip(*found);
    }
    return 0;
}
