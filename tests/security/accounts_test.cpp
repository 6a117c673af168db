#include <KxQts/winapi/security.h>

#include "fakes/groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <unistd.h>
#include <vector>

namespace {

std::vector<unsigned> manyGroups(std::size_t count) {
    return std::vector<unsigned>(count, 7);
}

} // namespace

TEST(CurrentUserAdmin, IsWhoHasGroupEighty) {
    KxTest::FakeGroups groups;
    EXPECT_FALSE(KxSecurityIsCurrentUserAdmin()) << "no groups at all";
    groups.ofThisProcess = {0, 8, 800, 81};
    EXPECT_FALSE(KxSecurityIsCurrentUserAdmin());
    groups.ofThisProcess = {5, 80};
    EXPECT_TRUE(KxSecurityIsCurrentUserAdmin());
}

TEST(CurrentUserAdmin, IsNobodyWithMoreThan64Groups) {
    KxTest::FakeGroups groups;
    groups.ofThisProcess = manyGroups(63);
    groups.ofThisProcess.push_back(80);
    EXPECT_TRUE(KxSecurityIsCurrentUserAdmin());
    groups.ofThisProcess.insert(groups.ofThisProcess.begin(), 80);
    EXPECT_FALSE(KxSecurityIsCurrentUserAdmin());
}

TEST(CurrentUserAdmin, IsAskedOfTheRealProcess) {
    std::vector<gid_t> own(static_cast<std::size_t>(getgroups(0, nullptr)));
    (void)getgroups(static_cast<int>(own.size()), own.data());
    const bool expected =
        own.size() <= 64 && std::find(own.begin(), own.end(), gid_t(80)) != own.end();
    EXPECT_EQ(KxSecurityIsCurrentUserAdmin(), expected);
}

TEST(UserAdmin, IsWhoHasGroupEighty) {
    KxTest::FakeGroups groups;
    groups.ofUsers = {{"ann", {5, 80}}, {"bob", {8, 800}}};
    EXPECT_TRUE(KxSecurityIsUserAdmin("ann"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("bob"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("no such user"));
    EXPECT_FALSE(KxSecurityIsUserAdmin(""));
    EXPECT_FALSE(KxSecurityIsUserAdmin(nullptr));
}

TEST(UserAdmin, IsNobodyInMoreThan64Groups) {
    KxTest::FakeGroups groups;
    groups.ofUsers["ann"] = manyGroups(62); // and the base group
    groups.ofUsers["ann"].push_back(80);
    EXPECT_TRUE(KxSecurityIsUserAdmin("ann"));
    groups.ofUsers["ann"] = manyGroups(63);
    groups.ofUsers["ann"].push_back(80);
    EXPECT_FALSE(KxSecurityIsUserAdmin("ann"));
    groups.ofUsers["ann"] = manyGroups(70);
    groups.ofUsers["ann"].front() = 80;
    EXPECT_FALSE(KxSecurityIsUserAdmin("ann"));
}

TEST(UserAdmin, IsAskedOfTheRealDatabase) {
    EXPECT_FALSE(KxSecurityIsUserAdmin("kxqts-no-such-user"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("nobody"));
}
