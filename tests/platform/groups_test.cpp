#include "platform/groups.h"

#include "fakes/groups.h"

#include <gtest/gtest.h>

#include <unistd.h>

using Korvex::groupMembership;
using Korvex::isAdministrator;

namespace {

std::size_t countOfOwnGroups() {
    return static_cast<std::size_t>(getgroups(0, nullptr));
}

/// The accounts of this machine.
class RealAccounts {};

/// The same as tests have them.
class FakeAccounts {
public:
    FakeAccounts() {
        groups.names[0] = "root";
        groups.ofUsers["root"] = {};
        groups.ofThisProcess.resize(countOfOwnGroups());
    }

private:
    KxTest::FakeGroups groups;
};

template <class Accounts>
class AnyGroupMembership : public testing::Test {
protected:
    const Accounts accounts{};
};

using Kinds = testing::Types<RealAccounts, FakeAccounts>;
TYPED_TEST_SUITE(AnyGroupMembership, Kinds);

} // namespace

TYPED_TEST(AnyGroupMembership, KnowsAccounts) {
    EXPECT_EQ(groupMembership().nameOf(0), "root");
    EXPECT_FALSE(groupMembership().nameOf(4'123'456'789).has_value());
    const auto groups = groupMembership().ofUser("root", 12345, 64);
    ASSERT_TRUE(groups.has_value());
    EXPECT_EQ(groups->front(), 12345u);
    EXPECT_EQ(groupMembership().ofUser("no such user", 7, 64), std::vector{7u});
}

TYPED_TEST(AnyGroupMembership, FitsTheLimitOrIsNotGiven) {
    EXPECT_FALSE(groupMembership().ofUser("root", 12345, 0).has_value());
    EXPECT_EQ(groupMembership().ofUser("no such user", 7, 1), std::vector{7u});
    const std::size_t count = countOfOwnGroups();
    const auto own = groupMembership().ofProcess(count + 1);
    ASSERT_TRUE(own.has_value());
    EXPECT_EQ(own->size(), count);
    if (count > 1) {
        EXPECT_FALSE(groupMembership().ofProcess(1).has_value());
    }
}

TEST(GroupMembership, AdministratorsAreTheMembersOfGroupEighty) {
    KxTest::FakeGroups accounts;
    accounts.names[7] = "ann";
    EXPECT_FALSE(isAdministrator(7));
    accounts.ofUsers["ann"] = {0, 8, 800, 81};
    EXPECT_FALSE(isAdministrator(7));
    accounts.ofUsers["ann"] = {5, 80};
    EXPECT_TRUE(isAdministrator(7));
    EXPECT_FALSE(isAdministrator(8)) << "nobody known";
}
