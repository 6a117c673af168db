#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Korvex {

/// The group whose members are the administrators.
inline constexpr unsigned administratorsGroup = 80;

/// Who belongs to which groups, by the account database. Any thread may call; a look-up may take as
/// long as the machine's directory service takes.
class GroupMembership {
public:
    virtual ~GroupMembership() = default;

    /// The supplementary groups of the calling process. \param limit How many the caller takes.
    /// \return Nothing when there are more.
    virtual std::optional<std::vector<unsigned>> ofProcess(std::size_t limit) = 0;

    /// The groups of a user, \a baseGroup among them. Of a name that the database does not know, it
    /// is the only one. \param limit How many the caller takes. \return Nothing when there are
    /// more.
    virtual std::optional<std::vector<unsigned>> ofUser(const std::string& name, unsigned baseGroup,
                                                        std::size_t limit) = 0;

    /// \return Nothing for a user that the database does not know.
    virtual std::optional<std::string> nameOf(unsigned userId) = 0;
};

/// The group membership in force.
GroupMembership& groupMembership();

/// Whether the administrators' group is among some groups: the one place that says what an
/// administrator is.
[[nodiscard]] bool includesAdministrators(const std::vector<unsigned>& groups);

/// Whether a user is a member of the administrators' group.
[[nodiscard]] bool isAdministrator(unsigned userId);

} // namespace Korvex
