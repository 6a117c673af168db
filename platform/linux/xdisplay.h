#pragma once

#include "platform/linux/xcblibrary.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace Korvex {

/// A connection to the display of the process, as long as it lives.
class XDisplay {
public:
    XDisplay();
    ~XDisplay();
    XDisplay(const XDisplay&) = delete;
    XDisplay& operator=(const XDisplay&) = delete;

    /// Whether there is a display at all. Nothing else may be called otherwise.
    [[nodiscard]] bool isOpen() const { return root != 0; }

    [[nodiscard]] xcb_window_t rootWindow() const { return root; }

    /// The number that stands for a name; 0 when there is none.
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;

    /// The 32-bit numbers that a property of a window holds; none when it is not there.
    [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window,
                                                      std::string_view name) const;

    /// Asks the window manager for something that concerns a window. \return Whether the display
    /// took the message.
    [[nodiscard]] bool sendToManager(xcb_window_t window, std::string_view message,
                                     std::uint32_t argument) const;

private:
    const XcbLibrary* xcb;
    xcb_connection_t* connection = nullptr;
    xcb_window_t root = 0;
};

} // namespace Korvex
