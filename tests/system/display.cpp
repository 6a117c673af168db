#include "system/display.h"

#include "system/children.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KxTest {

namespace {

/// Starts a program whose standard output and error go nowhere, with one descriptor of ours.
pid_t run(const std::vector<std::string>& words, int kept = -1) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // also when the test itself crashes
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        if (kept >= 0)
            fcntl(kept, F_SETFD, 0);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    return process;
}

} // namespace

Display::Display(Manager managed) {
    startServer();
    connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        ADD_FAILURE() << "no display: is Xvfb installed?";
        return;
    }
    screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    if (managed == Manager::Openbox)
        startManager();
}

Display::~Display() {
    xcb_disconnect(connection);
    stop(manager);
    stop(server);
    unsetenv("DISPLAY");
}

void Display::startServer() {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    server = run({"Xvfb", "-displayfd", std::to_string(ends[1]), "-nolisten", "tcp", "-screen", "0",
                  "320x200x24"},
                 ends[1]);
    close(ends[1]);
    std::string number;
    for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';)
        number += digit;
    close(ends[0]);
    setenv("DISPLAY", (":" + number).c_str(), 1);
}

void Display::startManager() {
    manager = run({"openbox", "--sm-disable", "--config-file", "/dev/null"});
    EXPECT_TRUE(becomes([&] {
        return !property(root(), "_NET_CLIENT_LIST_STACKING").empty() ||
               !property(root(), "_NET_SUPPORTED").empty();
    })) << "no window manager: is openbox installed?";
}

void Display::stop(pid_t process) {
    if (process < 0)
        return;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
}

xcb_window_t Display::show(pid_t owner) {
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root(), 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    if (owner != 0)
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &owner);
    xcb_map_window(connection, window);
    xcb_flush(connection);
    EXPECT_TRUE(becomes([&] {
        const auto list = property(root(), "_NET_CLIENT_LIST");
        return std::find(list.begin(), list.end(), window) != list.end();
    }));
    return window;
}

void Display::minimise(xcb_window_t window) {
    constexpr std::uint32_t iconicState = 3;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("WM_CHANGE_STATE");
    event.data.data32[0] = iconicState;
    xcb_send_event(connection, 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
    EXPECT_TRUE(becomes([&] {
        const auto states = property(window, "_NET_WM_STATE");
        return std::find(states.begin(), states.end(), atom("_NET_WM_STATE_HIDDEN")) !=
               states.end();
    }));
}

void Display::remove(xcb_window_t window) {
    xcb_destroy_window(connection, window);
    xcb_flush(connection);
    EXPECT_TRUE(becomes([&] {
        const auto list = property(root(), "_NET_CLIENT_LIST");
        return std::find(list.begin(), list.end(), window) == list.end();
    }));
}

std::vector<std::uint32_t> Display::property(xcb_window_t window, const std::string& name) {
    const auto cookie = xcb_get_property(connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 1024);
    const std::unique_ptr<xcb_get_property_reply_t, void (*)(void*)> reply(
        xcb_get_property_reply(connection, cookie, nullptr), std::free);
    if (!reply)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

xcb_atom_t Display::atom(const std::string& name) {
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), std::free);
    return reply ? reply->atom : 0;
}

} // namespace KxTest
