// Questions as polkit receives them, and programs that are run once it has agreed.

#include "common/unprivileged.h"
#include "platform/linux/polkitauthoriser.h"
#include "platform/replaceable.h"
#include "session/mockbus.h"
#include "session/ownprocesses.h"

#include <KxQts/system/privileged.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::asOrdinaryUser;

namespace {

constexpr unsigned long mayAsk = 19;

/// What a file holds once a program that is not waited for has written a whole line.
std::string lineIn(const std::string& file) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::string line;
    while (line.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        std::ifstream stream(file);
        line.assign(std::istreambuf_iterator<char>(stream), {});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return line;
}

void writeProgram(const std::string& path, const std::string& script) {
    std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
    fs::permissions(path, fs::perms(0755));
}

/// A folder that ordinary users may use, with a tool, and what stands for pkexec.
class Polkit : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(KxTest::isOnItsOwn());
        ASSERT_TRUE(bus.isRunning());
        chmod(fs::current_path().c_str(), 0755);
        fs::create_directory(folder);
        chmod(folder.c_str(), 0777);
        writeProgram(tool, "for word; do printf '[%s]' \"$word\"; done > " + output +
                               ".new; "
                               "echo >> " +
                               output + ".new; mv " + output + ".new " + output);
        writeProgram(pkexec, "echo \"$1\" > " + folder + "/asked; exec \"$@\"");
    }
    void TearDown() override { fs::remove_all(folder); }

    /// What the tool was given.
    [[nodiscard]] std::string toolRan() const { return lineIn(output); }

    const std::string folder = fs::absolute("run");
    const std::string tool = folder + "/tool";
    const std::string output = folder + "/output";
    const std::string pkexec = folder + "/pkexec";
    KxTest::MockBus bus;
    Korvex::PolkitAuthoriser authority{{pkexec.c_str(), KXQTS_HELPER}};
    Korvex::Replacement<Korvex::Authoriser> inForce{authority};
    const std::array<const char*, 3> arguments{"a", "two words", nullptr};
};

/// Asks as an ordinary user. The right is freed with \a flags.
OSStatus askAndFree(unsigned long flags, unsigned long freeFlags) {
    const AuthorizationOpaqueRef* ref = nullptr;
    OSStatus status = Korvex::authoriser().create(0, ref);
    if (status == 0)
        status = Korvex::authoriser().copyAdministratorRight(ref, flags);
    Korvex::authoriser().free(ref, freeFlags);
    return status;
}

} // namespace

TEST_F(Polkit, IsAskedForTheCallingProcess) {
    bus.polkitAnswers("yes");
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, 0), 0); }));
    const std::vector<std::string> calls = bus.calls("polkit");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].find("CheckAuthorization(['unix-process', {'pid': "), 0u) << calls[0];
    const uid_t user = geteuid() == 0 ? KxTest::ordinaryUser : geteuid();
    EXPECT_NE(calls[0].find("'uid': " + std::to_string(user) + "}]"), std::string::npos)
        << calls[0];
    EXPECT_EQ(calls[0].find("'start-time': 0,"), std::string::npos) << calls[0];
    const std::string end = ", 'com.korvex.kxqts.run-as-administrator', {}, 1, '')";
    EXPECT_EQ(calls[0].substr(calls[0].size() - end.size()), end);
}

TEST_F(Polkit, DoesNotAskTheUserUnlessItMay) {
    bus.polkitAnswers("challenge");
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(2, 0), -60007); }));
    EXPECT_NE(bus.lastCall("polkit").find("{}, 0, '')"), std::string::npos);
}

TEST_F(Polkit, RefusalsAreToldApart) {
    bus.polkitAnswers("no");
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, 0), -60005); }));
    bus.polkitAnswers("dismissed");
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, 0), -60006); }));
}

TEST_F(Polkit, ForgetsAnAnswerWhenTheRightIsDestroyed) {
    bus.polkitAnswers("kept");
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, 0), 0); }));
    EXPECT_EQ(bus.calls("polkit").size(), 1u) << "kept";
    EXPECT_TRUE(
        asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, kAuthorizationFlagDestroyRights), 0); }));
    EXPECT_EQ(bus.lastCall("polkit"), "RevokeTemporaryAuthorizationById('tmpauthz7')");
}

TEST_F(Polkit, RunsATool) {
    bus.polkitAnswers("kept");
    EXPECT_TRUE(asOrdinaryUser(
        [&] { EXPECT_EQ(runPrivilegedCommandOnce(tool.c_str(), arguments.data(), 0), 0); }));
    EXPECT_EQ(toolRan(), "[a][two words]\n");
    EXPECT_EQ(lineIn(folder + "/asked"), KXQTS_HELPER "\n") << "pkexec runs the helper";
}

TEST_F(Polkit, IsAskedOnceForManyRuns) {
    bus.polkitAnswers("kept");
    EXPECT_TRUE(asOrdinaryUser([&] {
        EXPECT_EQ(runPrivilegedCommand(tool.c_str(), arguments.data()), 0);
        EXPECT_EQ(runPrivilegedCommand(tool.c_str(), arguments.data()), 0);
        EXPECT_EQ(bus.calls("polkit").size(), 1u);
        authDestructor();
        EXPECT_EQ(bus.calls("polkit"),
                  std::vector<std::string>{"RevokeTemporaryAuthorizationById('tmpauthz7')"});
        EXPECT_EQ(runPrivilegedCommand(tool.c_str(), arguments.data()), 0);
        EXPECT_EQ(bus.calls("polkit").size(), 1u) << "asked again";
        authDestructor();
    }));
}

TEST_F(Polkit, RunsNothingAfterARefusal) {
    bus.polkitAnswers("no");
    EXPECT_TRUE(asOrdinaryUser([&] {
        EXPECT_EQ(runPrivilegedCommand(tool.c_str(), nullptr), -60005);
        authDestructor();
    }));
    EXPECT_FALSE(fs::exists(folder + "/asked"));
}

TEST_F(Polkit, PkexecsRefusalsAreToldApart) {
    bus.polkitAnswers("yes");
    for (const auto& [result, status] : {std::pair(126, -60006), {127, -60005}, {3, -60031}}) {
        writeProgram(pkexec, "exit " + std::to_string(result));
        EXPECT_TRUE(asOrdinaryUser([&, expected = status] {
            EXPECT_EQ(runPrivilegedCommandOnce(tool.c_str(), nullptr, 0), expected);
        }));
    }
    fs::remove(pkexec);
    EXPECT_TRUE(asOrdinaryUser(
        [&] { EXPECT_EQ(runPrivilegedCommandOnce(tool.c_str(), nullptr, 0), -60031); }));
}

TEST_F(Polkit, DoesNotAskRoot) {
    if (geteuid() != 0)
        GTEST_FAIL() << "needs root";
    EXPECT_EQ(runPrivilegedCommandOnce(tool.c_str(), arguments.data(), 0), 0);
    EXPECT_EQ(toolRan(), "[a][two words]\n");
    EXPECT_TRUE(bus.calls("polkit").empty());
    EXPECT_FALSE(fs::exists(folder + "/asked")) << "no pkexec";
}

TEST_F(Polkit, ToolsThatCannotBeStartedAreReported) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(runPrivilegedCommandOnce((folder + "/none").c_str(), nullptr, 0), -60031);
    EXPECT_EQ(runPrivilegedCommandOnce("tool", nullptr, 0), -60031) << "the path is absolute";
    EXPECT_EQ(runPrivilegedCommandOnce(nullptr, nullptr, 0), -60004);
    testing::internal::CaptureStdout();
    EXPECT_EQ(runPrivilegedCommand(nullptr, nullptr), -60004);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "----> toolPath=(null), -60004\n");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("kxqts-run"), std::string::npos);
    authDestructor();
}

TEST_F(Polkit, AuthorisationsAreNeeded) {
    EXPECT_EQ(authority.copyAdministratorRight(nullptr, mayAsk), -60002);
    EXPECT_EQ(authority.run(nullptr, tool.c_str(), nullptr), -60002);
    EXPECT_EQ(authority.free(nullptr, 8), 0);
}

TEST_F(Polkit, AToolThatRunsOnIsNotWaitedForAndIsNobodysChild) {
    writeProgram(tool, "echo $$ > " + output + "; exec sleep 1000");
    EXPECT_EQ(runPrivilegedCommandOnce(tool.c_str(), nullptr, 0), 0);
    const pid_t running = std::stoi(toolRan());
    EXPECT_EQ(kill(running, 0), 0);
    EXPECT_EQ(kill(running, SIGKILL), 0);
}

TEST(PolkitPolicy, NamesActionAndHelperAndKeepsAnswers) {
    std::ifstream stream(KXQTS_POLICY);
    const std::string policy((std::istreambuf_iterator<char>(stream)), {});
    EXPECT_NE(
        policy.find(std::string("<action id=\"") + Korvex::PolkitAuthoriser::actionName + '"'),
        std::string::npos);
    EXPECT_NE(policy.find("exec.path\">" KXQTS_INSTALLED_HELPER "</annotate>"), std::string::npos);
    EXPECT_NE(policy.find("<allow_active>auth_admin_keep</allow_active>"), std::string::npos);
}

TEST(PolkitMissing, NobodyAgrees) {
    ASSERT_TRUE(KxTest::isOnItsOwn());
    EXPECT_TRUE(asOrdinaryUser([] { EXPECT_EQ(askAndFree(mayAsk, 0), -60008); }));
}
