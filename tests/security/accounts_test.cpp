#include <KxQts/winapi/security.h>

#include "common/child.h"
#include "common/fileover.h"
#include "fakes/groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <grp.h>
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

TEST(CurrentUserAdmin, IsWhoTheSystemSaysItIs) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may change its groups";
    const auto isAdminWith = [](std::vector<gid_t> groups) {
        EXPECT_EQ(setgroups(groups.size(), groups.data()), 0);
        return KxSecurityIsCurrentUserAdmin();
    };
    EXPECT_TRUE(KxTest::inChild([&] {
        EXPECT_FALSE(isAdminWith({}));
        EXPECT_FALSE(isAdminWith({0, 8, 800}));
        EXPECT_TRUE(isAdminWith({8, 80}));
        std::vector<gid_t> many(63, 7);
        many.push_back(80);
        EXPECT_TRUE(isAdminWith(many));
        many.push_back(81);
        EXPECT_FALSE(isAdminWith(many)) << "65 of them";
        EXPECT_EQ(setgroups(0, nullptr), 0);
        EXPECT_EQ(setgid(80), 0);
        EXPECT_FALSE(KxSecurityIsCurrentUserAdmin()) << "a supplementary group is meant";
    }));
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

TEST(UserAdmin, IsWhoTheDatabaseSaysItIs) {
    std::string users = KxTest::contentsOf("/etc/passwd");
    std::string groups = "root:x:0:\nkxadmins:x:80:kxone,kxmany,kx63,kx64\n";
    for (const char* name : {"kxone", "kxmany", "kx63", "kx64", "kxnone"})
        users += std::string(name) + ":x:54321:54321::/:/bin/sh\n";
    users += "kxown:x:54322:80::/:/bin/sh\n";
    for (int i = 1; i <= 69; ++i)
        groups += "kxg" + std::to_string(i) + ":x:" + std::to_string(6000 + i) + ":kxmany" +
                  (i <= 62 ? ",kx63" : "") + (i <= 63 ? ",kx64" : "") + "\n";
    const KxTest::FileOver accounts("/etc/passwd", users);
    const KxTest::FileOver membership("/etc/group", groups);
    if (!accounts.mounted || !membership.mounted)
        GTEST_SKIP() << "needs root's rights";
    EXPECT_TRUE(KxSecurityIsUserAdmin("kxone"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("kxnone"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("kxmany")) << "in 70 groups";
    EXPECT_TRUE(KxSecurityIsUserAdmin("kx63")) << "in 63 groups, and group 0 that the list has";
    EXPECT_FALSE(KxSecurityIsUserAdmin("kx64"));
    EXPECT_FALSE(KxSecurityIsUserAdmin("kxown")) << "the list begins with group 0 instead of this";
}
