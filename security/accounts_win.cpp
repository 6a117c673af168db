#include <KxQts/winapi/security.h>

#include "platform/groups.h"

#include <new>

namespace {

// Whoever is in more groups is taken for nobody in particular: callers have always been answered
// from a table of this size.
constexpr std::size_t tableSize = 64;

constexpr unsigned baseGroup = 0;

bool includeAdministrators(const std::optional<std::vector<unsigned>>& groups) {
    return groups && Korvex::includesAdministrators(*groups);
}

} // namespace

bool KxSecurityIsCurrentUserAdmin() {
    try {
        return includeAdministrators(Korvex::groupMembership().ofProcess(tableSize));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool KxSecurityIsUserAdmin(const char* userName) {
    if (!userName)
        return false;
    try {
        return includeAdministrators(
            Korvex::groupMembership().ofUser(userName, baseGroup, tableSize));
    } catch (const std::bad_alloc&) {
        return false;
    }
}
