#include "fakes/authoriser.h"
#include "fakes/sleeplessclock.h"

#include <KxQts/system/privileged.h>

#include <gtest/gtest.h>

#include <array>

using KxTest::ScriptedAuthoriser;

namespace {

using Calls = std::vector<std::string>;

constexpr const char* tool = "/bin/tool";
constexpr std::array<const char*, 3> arguments{"one", "two words", nullptr};
const Calls oneRun{"create 0", "right 19", "run /bin/tool one two words"};

class Privileged : public testing::Test {
protected:
    ~Privileged() override {
        authDestructor();
        EXPECT_EQ(authority.live, 0);
    }

    /// Runs the tool. \return What was printed.
    std::string run(OSStatus expected) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(runPrivilegedCommand(tool, arguments.data()), expected);
        return testing::internal::GetCapturedStdout();
    }

    [[nodiscard]] long slept() {
        std::chrono::microseconds sum{0};
        for (const auto time : clock.sleeps())
            sum += time;
        return std::chrono::duration_cast<std::chrono::milliseconds>(sum).count();
    }

    Calls taken() { return std::exchange(authority.calls, {}); }

    ScriptedAuthoriser authority;
    KxTest::SleeplessClock clock;
};

} // namespace

TEST_F(Privileged, RequestMakesAnAuthorisationAndObtainsTheRight) {
    const AuthorizationOpaqueRef* ref = nullptr;
    EXPECT_EQ(requestAuthorization(ref, 5), 0);
    EXPECT_NE(ref, nullptr);
    EXPECT_EQ(taken(), (Calls{"create 5", "right 19"}));
    authority.free(ref, 0);
}

TEST_F(Privileged, RequestEndsWithTheFirstFailure) {
    const AuthorizationOpaqueRef* ref = nullptr;
    authority.creations = {-60008};
    EXPECT_EQ(requestAuthorization(ref, 0), -60008);
    EXPECT_EQ(taken(), Calls{"create 0"});
    authority.rights = {-60005};
    EXPECT_EQ(requestAuthorization(ref, 0), -60005);
    EXPECT_NE(ref, nullptr) << "it is the caller's all the same";
    authority.free(ref, 0);
}

TEST_F(Privileged, OnceForgetsTheAuthorisation) {
    EXPECT_EQ(runPrivilegedCommandOnce(tool, arguments.data(), 8), 0);
    EXPECT_EQ(taken(), (Calls{"create 8", "right 19", "run /bin/tool one two words", "free 8"}));
    EXPECT_EQ(slept(), 100);
    EXPECT_EQ(runPrivilegedCommandOnce(tool, nullptr, 0), 0);
    EXPECT_EQ(taken(), (Calls{"create 0", "right 19", "run /bin/tool", "free 0"}));
}

TEST_F(Privileged, OnceGivesTheFirstFailureWithoutWaiting) {
    authority.creations = {-60008};
    EXPECT_EQ(runPrivilegedCommandOnce(tool, nullptr, 0), -60008);
    EXPECT_EQ(taken(), Calls{"create 0"});
    authority.rights = {-60006};
    EXPECT_EQ(runPrivilegedCommandOnce(tool, nullptr, 0), -60006);
    EXPECT_EQ(taken(), (Calls{"create 0", "right 19", "free 0"}));
    authority.runs = {-60031};
    EXPECT_EQ(runPrivilegedCommandOnce(tool, nullptr, 0), -60031);
    EXPECT_EQ(slept(), 0);
}

TEST_F(Privileged, PrintsPathStatusAndArguments) {
    EXPECT_EQ(run(0), "----> toolPath=/bin/tool, 0\narg[0]=one\narg[1]=two words\n");
    EXPECT_EQ(slept(), 100);
}

TEST_F(Privileged, ASecondRunDoesNotAskAgain) {
    run(0);
    EXPECT_EQ(taken(), oneRun);
    run(0);
    EXPECT_EQ(taken(), Calls{"run /bin/tool one two words"});
}

TEST_F(Privileged, TheDestructorMakesTheNextRunAskAgain) {
    run(0);
    (void)taken();
    authDestructor();
    EXPECT_EQ(taken(), Calls{"free 8"}) << "the answer is not kept either";
    run(0);
    EXPECT_EQ(taken(), oneRun);
    authDestructor();
    authDestructor();
}

TEST_F(Privileged, ARefusedRightIsPrintedWithoutALineEnd) {
    authority.rights = {-60005};
    EXPECT_EQ(run(-60005), "runPrivilegedCommand:status -60005");
    EXPECT_EQ(taken(), (Calls{"create 0", "right 19"})) << "nothing is run";
    EXPECT_EQ(slept(), 0);
    run(0);
    EXPECT_EQ(taken(), Calls{"run /bin/tool one two words"}) << "the authorisation is kept";
}

TEST_F(Privileged, WithoutArgumentsNoneIsPrinted) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(runPrivilegedCommand(tool, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "----> toolPath=/bin/tool, 0\n");
}

TEST_F(Privileged, AnAuthorisationThatCannotBeMadeIsPrintedToo) {
    authority.creations = {-60008};
    EXPECT_EQ(run(-60008), "runPrivilegedCommand:status -60008");
    EXPECT_EQ(taken(), Calls{"create 0"});
    run(0);
    EXPECT_EQ(taken(), oneRun) << "the next one begins anew";
}

TEST_F(Privileged, AFailedRunIsTriedAgainWithANewAuthorisation) {
    authority.runs = {-60031};
    EXPECT_EQ(run(0), "----> toolPath=/bin/tool, -60031\narg[0]=one\narg[1]=two words\n");
    EXPECT_EQ(taken(), (Calls{"create 0", "right 19", "run /bin/tool one two words", "free 8",
                              "create 0", "right 19", "run /bin/tool one two words"}));
    EXPECT_EQ(slept(), 100);
    run(0);
    EXPECT_EQ(taken(), Calls{"run /bin/tool one two words"}) << "the new one is kept";
}

TEST_F(Privileged, ASecondFailureIsReturned) {
    authority.runs = {-60031, -60005};
    run(-60005);
    (void)taken();
    authority.runs = {-60031};
    authority.rights = {-60006};
    run(-60006);
    EXPECT_EQ(taken(), (Calls{"run /bin/tool one two words", "free 8", "create 0", "right 19"}));
    EXPECT_EQ(slept(), 0);
}
