#pragma once

#include <xcb/xcb.h>

namespace Korvex {

/// The X client library, loaded when it is first asked for: programs without a display never pay
/// for it.
struct XcbLibrary {
    decltype(&::xcb_connect) connect = nullptr;
    decltype(&::xcb_disconnect) disconnect = nullptr;
    decltype(&::xcb_connection_has_error) hasError = nullptr;
    decltype(&::xcb_get_setup) setup = nullptr;
    decltype(&::xcb_setup_roots_iterator) roots = nullptr;
    decltype(&::xcb_intern_atom) internAtom = nullptr;
    decltype(&::xcb_intern_atom_reply) internAtomReply = nullptr;
    decltype(&::xcb_get_property) getProperty = nullptr;
    decltype(&::xcb_get_property_reply) getPropertyReply = nullptr;
    decltype(&::xcb_get_property_value) propertyValue = nullptr;
    decltype(&::xcb_get_property_value_length) propertyLength = nullptr;
    decltype(&::xcb_send_event_checked) sendEvent = nullptr;
    decltype(&::xcb_request_check) check = nullptr;

    /// Null where the library is not installed.
    static const XcbLibrary* loaded();
};

} // namespace Korvex
