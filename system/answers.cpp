#include "system/answers.h"

#include "platform/preferences.h"

namespace Korvex {

bool handOn(const std::optional<std::string>& answer, QString& out) {
    if (answer)
        out = QString::fromStdString(*answer);
    return answer.has_value();
}

bool saysNothing(const QString& domain) {
    bool isEmpty = false;
    systemPreferences().read(
        {domain, PreferenceDomain::Scope::AnyUser},
        [&](const PropertyList::Tree& tree) { isEmpty = tree.count(tree.top()) == 0; });
    return isEmpty;
}

} // namespace Korvex
