#include <KxQts/system/currentprocess.h>

#include "platform/replaceable.h"
#include "platform/windowcontrol.h"
#include "system/children.h"
#include "system/display.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <unistd.h>

using KxTest::becomes;
using KxTest::Display;

namespace {

/// Window control with answers as a test wants them.
class ScriptedWindowControl : public Korvex::WindowControl {
public:
    int current = 0;
    int front = 0;
    int visibility = 0;
    bool isVisible = true;
    int next = 0;
    int fronted = 0; ///< How often something was brought to the front

    int findCurrentProcess() override { return current; }
    int bringToFront() override {
        ++fronted;
        return front;
    }
    int askVisibility(bool& visible) override {
        visible = isVisible;
        return visibility;
    }
    int findNextProcess() override { return next; }

private:
    Korvex::Replacement<Korvex::WindowControl> inForce{*this};
};

constexpr pid_t otherProcess = 1;

} // namespace

TEST(CurrentProcess, ShowingFalseDoesNothing) {
    ScriptedWindowControl control;
    control.front = -50;
    EXPECT_TRUE(showCurrentProcess(false));
    EXPECT_EQ(control.fronted, 0);
    EXPECT_FALSE(showCurrentProcess(true));
    EXPECT_EQ(control.fronted, 1);
    control.front = 0;
    EXPECT_TRUE(showCurrentProcess(true));
}

TEST(CurrentProcess, VisibilityIsFalseOnEveryError) {
    ScriptedWindowControl control;
    EXPECT_TRUE(isCurrentProcessVisible());
    control.isVisible = false;
    EXPECT_FALSE(isCurrentProcessVisible());
    control.isVisible = true;
    control.visibility = -50;
    EXPECT_FALSE(isCurrentProcessVisible());
    control.visibility = 0;
    control.current = -600;
    EXPECT_FALSE(isCurrentProcessVisible());
}

TEST(CurrentProcess, ToBeInFrontItMustBeFound) {
    ScriptedWindowControl control;
    EXPECT_TRUE(setFrontCurrentProcess());
    control.front = -50;
    EXPECT_FALSE(setFrontCurrentProcess());
    control.front = 0;
    control.current = -600;
    EXPECT_FALSE(setFrontCurrentProcess());
    EXPECT_EQ(control.fronted, 2);
}

TEST(CurrentProcess, OnlyNotFoundMeansThatThereIsNoNext) {
    ScriptedWindowControl control;
    bool isNext = false;
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_TRUE(isNext);
    control.next = -600;
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_FALSE(isNext);
    control.next = -50;
    isNext = true;
    EXPECT_EQ(isNextCurrentProcess(isNext), -50);
    EXPECT_TRUE(isNext);
}

TEST(CurrentProcess, WithoutADisplayThereIsNoApplication) {
    for (const char* display : {static_cast<const char*>(nullptr), ":12345", "nonsense"}) {
        display ? setenv("DISPLAY", display, 1) : unsetenv("DISPLAY");
        EXPECT_TRUE(showCurrentProcess(false));
        EXPECT_FALSE(showCurrentProcess(true));
        EXPECT_FALSE(isCurrentProcessVisible());
        EXPECT_FALSE(setFrontCurrentProcess());
        bool isNext = true;
        EXPECT_EQ(isNextCurrentProcess(isNext), 0);
        EXPECT_FALSE(isNext);
    }
    unsetenv("DISPLAY");
}

TEST(CurrentProcess, WithoutAWindowManagerThereIsNoApplication) {
    const Display display(Display::Manager::None);
    EXPECT_FALSE(showCurrentProcess(true));
    EXPECT_FALSE(isCurrentProcessVisible());
    bool isNext = true;
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_FALSE(isNext);
}

TEST(CurrentProcess, WithoutAWindowItIsNoApplication) {
    Display display;
    display.show(otherProcess);
    display.show(0);
    EXPECT_FALSE(isCurrentProcessVisible());
    EXPECT_FALSE(setFrontCurrentProcess());
    EXPECT_FALSE(showCurrentProcess(true));
    bool isNext = true;
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_FALSE(isNext);
}

TEST(CurrentProcess, IsVisibleUnlessAllItsWindowsAreMinimised) {
    Display display;
    const xcb_window_t one = display.show(getpid());
    const xcb_window_t other = display.show(getpid());
    EXPECT_TRUE(isCurrentProcessVisible());
    display.minimise(one);
    EXPECT_TRUE(isCurrentProcessVisible());
    display.minimise(other);
    EXPECT_FALSE(isCurrentProcessVisible());
    EXPECT_TRUE(showCurrentProcess(true));
    EXPECT_TRUE(becomes([] { return isCurrentProcessVisible(); }));
}

TEST(CurrentProcess, ComesToTheFront) {
    Display display;
    const xcb_window_t own = display.show(getpid());
    const xcb_window_t other = display.show(otherProcess);
    const auto isActive = [&](xcb_window_t window) {
        return display.property(display.root(), "_NET_ACTIVE_WINDOW") ==
               std::vector<std::uint32_t>{window};
    };
    const auto isOnTop = [&](xcb_window_t window) {
        const auto stacked = display.property(display.root(), "_NET_CLIENT_LIST_STACKING");
        return !stacked.empty() && stacked.back() == window;
    };
    EXPECT_TRUE(becomes([&] { return isOnTop(other); }));
    EXPECT_TRUE(setFrontCurrentProcess());
    EXPECT_TRUE(becomes([&] { return isActive(own) && isOnTop(own); }));
}

TEST(CurrentProcess, IsFollowedByApplicationsWhoseFirstWindowIsLater) {
    Display display;
    bool isNext = true;
    const xcb_window_t before = display.show(otherProcess);
    display.show(getpid());
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_FALSE(isNext) << "it is the last";
    display.show(otherProcess);
    display.show(getpid());
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_FALSE(isNext) << "the other one's first window was there before";
    display.remove(before);
    EXPECT_EQ(isNextCurrentProcess(isNext), 0);
    EXPECT_TRUE(isNext);
}
