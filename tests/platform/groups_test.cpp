#include "platform/groups.h"

#include "platform/replaceable.h"

#include <gtest/gtest.h>

#include <unistd.h>

using Korvex::groupMembership;
using Korvex::isAdministrator;

namespace {

/// Accounts as a test wants them: one user.
class OneUser : public Korvex::GroupMembership {
public:
    std::vector<unsigned> groups;

    std::optional<std::vector<unsigned>> ofProcess(std::size_t) override { return groups; }
    std::optional<std::vector<unsigned>> ofUser(const std::string& name, unsigned baseGroup,
                                                std::size_t limit) override {
        EXPECT_EQ(name, "ann");
        EXPECT_NE(baseGroup, Korvex::administratorsGroup);
        return groups.size() <= limit ? std::optional(groups) : std::nullopt;
    }
    std::optional<std::string> nameOf(unsigned userId) override {
        return userId == 7 ? std::optional<std::string>("ann") : std::nullopt;
    }

private:
    Korvex::Replacement<Korvex::GroupMembership> inForce{*this};
};

} // namespace

TEST(GroupMembership, AdministratorsAreTheMembersOfGroupEighty) {
    OneUser accounts;
    EXPECT_FALSE(isAdministrator(7));
    accounts.groups = {0, 8, 800, 81};
    EXPECT_FALSE(isAdministrator(7));
    accounts.groups = {5, 80};
    EXPECT_TRUE(isAdministrator(7));
    EXPECT_FALSE(isAdministrator(8)) << "nobody known";
}

TEST(GroupMembership, KnowsTheMachinesAccounts) {
    EXPECT_EQ(groupMembership().nameOf(0), "root");
    EXPECT_FALSE(groupMembership().nameOf(4'123'456'789).has_value());
    const auto groups = groupMembership().ofUser("root", 12345, 64);
    ASSERT_TRUE(groups.has_value());
    EXPECT_EQ(groups->front(), 12345u);
    EXPECT_EQ(groupMembership().ofUser("no such user", 7, 64), std::vector{7u});
}

TEST(GroupMembership, FitsTheLimitOrIsNotGiven) {
    EXPECT_FALSE(groupMembership().ofUser("root", 12345, 0).has_value());
    const int count = getgroups(0, nullptr);
    const auto own = groupMembership().ofProcess(static_cast<std::size_t>(count) + 1);
    ASSERT_TRUE(own.has_value());
    EXPECT_EQ(own->size(), static_cast<std::size_t>(count));
    if (count > 1) {
        EXPECT_FALSE(groupMembership().ofProcess(1).has_value());
    }
}
