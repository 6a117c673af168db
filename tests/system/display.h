#pragma once

#include <string>
#include <sys/types.h>
#include <vector>
#include <xcb/xcb.h>

namespace KxTest {

/// A display of the test's own: the server Xvfb, and the window manager openbox unless it is not
/// wanted. `DISPLAY` names it while it lives.
class Display {
public:
    enum class Manager { Openbox, None };

    explicit Display(Manager manager = Manager::Openbox);
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// Shows a window that says it belongs to a process, and waits until the manager lists it.
    xcb_window_t show(pid_t owner);
    void minimise(xcb_window_t window);
    void remove(xcb_window_t window);

    /// The numbers in a property.
    std::vector<std::uint32_t> property(xcb_window_t window, const std::string& name);
    xcb_window_t root() const { return screen->root; }
    xcb_atom_t atom(const std::string& name);

private:
    void startServer();
    void startManager();
    void stop(pid_t process);

    pid_t server = -1;
    pid_t manager = -1;
    xcb_connection_t* connection = nullptr;
    xcb_screen_t* screen = nullptr;
};

} // namespace KxTest
