// Requests as logind receives them.

#include "session/mockbus.h"
#include "session/ownprocesses.h"

#include <KxQts/system/sessioncontrol.h>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using Calls = std::vector<std::string>;

class Logind : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(KxTest::isOnItsOwn());
        ASSERT_TRUE(bus.isRunning());
    }

    KxTest::MockBus bus;
};

const std::string ownSession = "GetSessionByPID(" + std::to_string(getpid()) + ")";

} // namespace

TEST_F(Logind, RestartsTheMachine) {
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), 0);
    EXPECT_EQ(bus.calls("logind"), Calls{"Reboot(True)"}) << "the user may be asked";
}

TEST_F(Logind, ShutsTheMachineDown) {
    EXPECT_EQ(sendEventToSystemProcess(kAEShutDown), 0);
    EXPECT_EQ(bus.calls("logind"), Calls{"PowerOff(True)"});
}

TEST_F(Logind, EndsTheSessionOfTheCaller) {
    EXPECT_EQ(sendEventToSystemProcess(kAEReallyLogOut), 0);
    EXPECT_EQ(bus.calls("logind"), (Calls{ownSession, "TerminateSession('7')"}));
}

TEST_F(Logind, ProgramsThatForceItEndWithSuccess) {
    EXPECT_EXIT(forceRestart(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(bus.calls("logind"), Calls{"Reboot(True)"});
    EXPECT_EXIT(forceShutDown(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(bus.calls("logind"), Calls{"PowerOff(True)"});
    EXPECT_EXIT(forceLogOut(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(bus.lastCall("logind"), "TerminateSession('7')");
}

TEST_F(Logind, RefusalsAndOtherErrorsAreToldApart) {
    bus.logindFails("Reboot", "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), -10004);
    bus.logindFails("Reboot", "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired");
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), -10004);
    bus.logindFails("Reboot", "org.freedesktop.DBus.Error.Timeout");
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), -1712);
    bus.logindFails("Reboot", "org.freedesktop.login1.OperationInProgress");
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), -10000);
}

TEST_F(Logind, AProcessOutsideEverySessionCannotLogOut) {
    bus.logindFails("GetSessionByPID", "org.freedesktop.login1.NoSessionForPID");
    EXPECT_EQ(sendEventToSystemProcess(kAEReallyLogOut), -600);
    EXPECT_EQ(bus.calls("logind"), Calls{ownSession});
}

TEST(LogindMissing, NobodyTakesTheRequest) {
    ASSERT_TRUE(KxTest::isOnItsOwn());
    for (const unsigned long event : {kAERestart, kAEShutDown, kAEReallyLogOut})
        EXPECT_EQ(sendEventToSystemProcess(event), -609);
}
