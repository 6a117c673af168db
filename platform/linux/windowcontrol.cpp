#include "platform/windowcontrol.h"

#include "platform/linux/xdisplay.h"
#include "platform/replaceable.h"

#include <KxQts/platformtypes.h>

#include <algorithm>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr int notFound = procNotFound;

// What window managers obey in any case; an application's own wish may be put off.
constexpr std::uint32_t userAction = 2;

std::uint32_t ownerOf(const XDisplay& display, xcb_window_t window) {
    const std::vector<std::uint32_t> owner = display.property(window, "_NET_WM_PID");
    return owner.empty() ? 0 : owner.front();
}

std::uint32_t ownId() {
    return static_cast<std::uint32_t>(getpid());
}

/// The processes that have windows, in the order of their first ones.
std::vector<std::uint32_t> applications(const XDisplay& display) {
    if (!display.isOpen())
        return {};
    std::vector<std::uint32_t> owners;
    for (xcb_window_t window : display.property(display.rootWindow(), "_NET_CLIENT_LIST")) {
        const std::uint32_t owner = ownerOf(display, window);
        if (owner != 0 && std::find(owners.begin(), owners.end(), owner) == owners.end())
            owners.push_back(owner);
    }
    return owners;
}

/// The calling process's windows among those of a list that the window manager keeps.
std::vector<xcb_window_t> ownWindows(const XDisplay& display, std::string_view list) {
    if (!display.isOpen())
        return {};
    std::vector<xcb_window_t> windows = display.property(display.rootWindow(), list);
    std::erase_if(windows,
                  [&](xcb_window_t window) { return ownerOf(display, window) != ownId(); });
    return windows;
}

bool isMinimised(const XDisplay& display, xcb_window_t window) {
    const std::vector<std::uint32_t> states = display.property(window, "_NET_WM_STATE");
    return std::find(states.begin(), states.end(), display.atom("_NET_WM_STATE_HIDDEN")) !=
           states.end();
}

class LinuxWindowControl final : public WindowControl {
public:
    int findCurrentProcess() override {
        return ownWindows(XDisplay(), "_NET_CLIENT_LIST").empty() ? notFound : 0;
    }

    int bringToFront() override {
        const XDisplay display;
        const std::vector<xcb_window_t> windows = ownWindows(display, "_NET_CLIENT_LIST_STACKING");
        return !windows.empty() &&
                       display.sendToManager(windows.back(), "_NET_ACTIVE_WINDOW", userAction)
                   ? 0
                   : notFound;
    }

    int askVisibility(bool& visible) override {
        const XDisplay display;
        const std::vector<xcb_window_t> windows = ownWindows(display, "_NET_CLIENT_LIST");
        if (windows.empty())
            return notFound;
        visible = std::any_of(windows.begin(), windows.end(),
                              [&](xcb_window_t window) { return !isMinimised(display, window); });
        return 0;
    }

    int findNextProcess() override {
        const std::vector<std::uint32_t> all = applications(XDisplay());
        const auto own = std::find(all.begin(), all.end(), ownId());
        return own == all.end() || own + 1 == all.end() ? notFound : 0;
    }
};

} // namespace

WindowControl& windowControl() {
    static LinuxWindowControl control;
    return inForce<WindowControl>(control);
}

} // namespace Korvex
