#include "common/program.h"

#include <KxQts/registry/loginitems.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

using KxTest::ProgramResult;
using KxTest::runProgram;
using testing::ContainsRegex;

namespace {

/// Each test begins without any lists.
class KxLoginItems : public testing::Test {
protected:
    KxLoginItems() { removeAll(); }
    ~KxLoginItems() override { removeAll(); }

    static void removeAll() {
        for (const char* root : {"KXQTS_ROOT", "HOME"})
            fs::remove_all(fs::path(std::getenv(root)) / "Library");
    }

    static ProgramResult kx(std::vector<std::string> words) {
        words.insert(words.begin(), {KX_PROGRAM, "login-items"});
        return runProgram(words);
    }
};

} // namespace

TEST_F(KxLoginItems, WithoutListsSaysNothing) {
    const ProgramResult shown = kx({});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output + shown.errors, "");
}

TEST_F(KxLoginItems, ShowsEveryList) {
    EXPECT_EQ(kx({"--add", "/opt/mine.app"}).status, 0);
    EXPECT_EQ(kx({"--add", "/opt/all.app", "--machine"}).status, 0);
    ASSERT_TRUE(Korvex::addRemoveLionGlobalLoginItem(
        "/opt/Tool.app", "Tool", Korvex::AutoLaunchedItemAdd, nullptr, 0, nullptr, 0));
    const ProgramResult shown = kx({});
    EXPECT_THAT(shown.output, ContainsRegex("\nuser +/opt/mine\\.app +0 +-\n"));
    EXPECT_THAT(shown.output, ContainsRegex("\nmachine +/opt/all\\.app +0 +-\n"));
    EXPECT_THAT(shown.output, ContainsRegex("\nprivileged +/opt/Tool\\.app +0 +Tool\n"));
}

TEST_F(KxLoginItems, RemovesFromOneList) {
    EXPECT_EQ(kx({"--add", "/opt/a"}).status, 0);
    EXPECT_EQ(kx({"--add", "/opt/b"}).status, 0);
    EXPECT_EQ(kx({"--remove", "/opt/a"}).status, 0);
    const ProgramResult again = kx({"--remove", "/opt/a"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.errors, "kx login-items: /opt/a is not in the list\n");
    EXPECT_THAT(kx({}).output, testing::Not(testing::HasSubstr("/opt/a")));
    EXPECT_THAT(kx({}).output, testing::HasSubstr("/opt/b"));
}

TEST_F(KxLoginItems, RefusesWhatMakesNoSense) {
    EXPECT_EQ(kx({"--add", "/a", "--remove", "/b"}).status, 2);
    EXPECT_EQ(kx({"--machine"}).status, 2);
    EXPECT_EQ(kx({"what"}).status, 2);
}
