#include "platform/linux/xcblibrary.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

/// \return Whether all is there.
bool load(XcbLibrary& xcb) {
    void* const library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    return library && find(library, "xcb_connect", xcb.connect) &&
           find(library, "xcb_disconnect", xcb.disconnect) &&
           find(library, "xcb_connection_has_error", xcb.hasError) &&
           find(library, "xcb_get_setup", xcb.setup) &&
           find(library, "xcb_setup_roots_iterator", xcb.roots) &&
           find(library, "xcb_intern_atom", xcb.internAtom) &&
           find(library, "xcb_intern_atom_reply", xcb.internAtomReply) &&
           find(library, "xcb_get_property", xcb.getProperty) &&
           find(library, "xcb_get_property_reply", xcb.getPropertyReply) &&
           find(library, "xcb_get_property_value", xcb.propertyValue) &&
           find(library, "xcb_get_property_value_length", xcb.propertyLength) &&
           find(library, "xcb_send_event_checked", xcb.sendEvent) &&
           find(library, "xcb_request_check", xcb.check);
}

} // namespace

const XcbLibrary* XcbLibrary::loaded() {
    static XcbLibrary xcb;
    static const bool isWhole = load(xcb);
    return isWhole ? &xcb : nullptr;
}

} // namespace Korvex
