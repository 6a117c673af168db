#include "platform/groups.h"

#include <algorithm>

namespace Korvex {

namespace {

constexpr std::size_t mostGroups = 65'536; // as many as the system lets anyone have
constexpr unsigned noGroup = ~0u;

} // namespace

bool includesAdministrators(const std::vector<unsigned>& groups) {
    return std::find(groups.begin(), groups.end(), administratorsGroup) != groups.end();
}

bool isAdministrator(unsigned userId) {
    const auto name = groupMembership().nameOf(userId);
    const auto groups = name ? groupMembership().ofUser(*name, noGroup, mostGroups) : std::nullopt;
    return groups && includesAdministrators(*groups);
}

} // namespace Korvex
