#include "fakes/sessioncontrol.h"

#include <KxQts/system/sessioncontrol.h>

#include <gtest/gtest.h>

using Korvex::SessionRequest;
using KxTest::ScriptedSessionControl;

TEST(SessionControl, SendsTheEventsOfTheSystemProcess) {
    ScriptedSessionControl control;
    EXPECT_EQ(sendEventToSystemProcess(0x72657374), 0) << "rest";
    EXPECT_EQ(sendEventToSystemProcess(0x726C676F), 0) << "rlgo";
    EXPECT_EQ(sendEventToSystemProcess(0x73687574), 0) << "shut";
    EXPECT_EQ(control.requests, (std::vector{SessionRequest::Restart, SessionRequest::LogOut,
                                             SessionRequest::ShutDown}));
}

TEST(SessionControl, ReturnsTheErrorOfTheRequest) {
    ScriptedSessionControl control;
    control.result = -609;
    EXPECT_EQ(sendEventToSystemProcess(kAERestart), -609);
}

TEST(SessionControl, KnowsNoOtherEvents) {
    ScriptedSessionControl control;
    EXPECT_EQ(sendEventToSystemProcess(kAEQuitApplication), -1708);
    EXPECT_EQ(sendEventToSystemProcess(0), -1708);
    EXPECT_TRUE(control.requests.empty());
}

TEST(SessionControlDeathTest, EndsTheCallerWithSuccessWhateverBecameOfTheRequest) {
    ScriptedSessionControl control;
    for (const OSErr result : {0, -609}) {
        control.result = result;
        EXPECT_EXIT(forceRestart(), testing::ExitedWithCode(0), "request 0");
        EXPECT_EXIT(forceLogOut(), testing::ExitedWithCode(0), "request 1");
        EXPECT_EXIT(forceShutDown(), testing::ExitedWithCode(0), "request 2");
    }
}
