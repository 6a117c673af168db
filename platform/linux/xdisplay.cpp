#include "platform/linux/xdisplay.h"

#include <cstdlib>
#include <cstring>

namespace Korvex {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

constexpr std::uint32_t longestProperty = 1 << 16; // in 32-bit units

} // namespace

XDisplay::XDisplay() : xcb(XcbLibrary::loaded()) {
    if (!xcb || !std::getenv("DISPLAY"))
        return;
    int screen = 0;
    connection = xcb->connect(nullptr, &screen);
    if (xcb->hasError(connection) != 0)
        return;
    // One root window is enough: window managers list windows at the first.
    const xcb_screen_iterator_t screens = xcb->roots(xcb->setup(connection));
    root = screens.rem > 0 ? screens.data->root : 0;
}

XDisplay::~XDisplay() {
    if (connection)
        xcb->disconnect(connection);
}

xcb_atom_t XDisplay::atom(std::string_view name) const {
    const auto cookie =
        xcb->internAtom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb->internAtomReply(connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

std::vector<std::uint32_t> XDisplay::property(xcb_window_t window, std::string_view name) const {
    const xcb_atom_t property = atom(name);
    if (property == 0)
        return {};
    const auto cookie = xcb->getProperty(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY,
                                         0, longestProperty);
    const Owned<xcb_get_property_reply_t> reply(xcb->getPropertyReply(connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* bytes = static_cast<const char*>(xcb->propertyValue(reply.get()));
    std::vector<std::uint32_t> values(static_cast<std::size_t>(xcb->propertyLength(reply.get())) /
                                      sizeof(std::uint32_t));
    if (!values.empty())
        std::memcpy(values.data(), bytes, values.size() * sizeof(std::uint32_t));
    return values;
}

bool XDisplay::sendToManager(xcb_window_t window, std::string_view message,
                             std::uint32_t argument) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    event.data.data32[0] = argument;
    const auto cookie =
        xcb->sendEvent(connection, 0, root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&event));
    const Owned<xcb_generic_error_t> error(xcb->check(connection, cookie));
    return event.type != 0 && !error && xcb->hasError(connection) == 0;
}

} // namespace Korvex
