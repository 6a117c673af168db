#include "platform/preferences.h"

#include <QHashFunctions>

namespace Korvex {

std::size_t PreferenceDomainHash::operator()(const PreferenceDomain& domain) const {
    return qHash(domain.id) ^ static_cast<std::size_t>(domain.scope);
}

CFTypeRef Preferences::copyValue(const PreferenceDomain& domain, QStringView name) {
    CFTypeRef value = nullptr;
    read(domain,
         [&](const PropertyList::Tree& tree) { value = tree.copy(tree.member(tree.top(), name)); });
    return value;
}

bool Preferences::setValue(const PreferenceDomain& domain, QStringView name, CFTypeRef value) {
    return change(domain, [&](PropertyList::Editor& editor) {
        return editor.set(editor.top(), name, value);
    });
}

bool Preferences::removeValue(const PreferenceDomain& domain, QStringView name) {
    return change(domain, [&](PropertyList::Editor& editor) {
        editor.remove(editor.top(), name);
        return true;
    });
}

} // namespace Korvex
