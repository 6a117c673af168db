#include "platform/linux/xcblibrary.h"

#include "platform/linux/symbol.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

/// \return Whether all is there.
bool load(XcbLibrary& xcb) {
    void* const library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    return library && findSymbol(library, "xcb_connect", xcb.connect) &&
           findSymbol(library, "xcb_disconnect", xcb.disconnect) &&
           findSymbol(library, "xcb_connection_has_error", xcb.hasError) &&
           findSymbol(library, "xcb_get_setup", xcb.setup) &&
           findSymbol(library, "xcb_setup_roots_iterator", xcb.roots) &&
           findSymbol(library, "xcb_intern_atom", xcb.internAtom) &&
           findSymbol(library, "xcb_intern_atom_reply", xcb.internAtomReply) &&
           findSymbol(library, "xcb_get_property", xcb.getProperty) &&
           findSymbol(library, "xcb_get_property_reply", xcb.getPropertyReply) &&
           findSymbol(library, "xcb_get_property_value", xcb.propertyValue) &&
           findSymbol(library, "xcb_get_property_value_length", xcb.propertyLength) &&
           findSymbol(library, "xcb_send_event_checked", xcb.sendEvent) &&
           findSymbol(library, "xcb_request_check", xcb.check);
}

} // namespace

const XcbLibrary* XcbLibrary::loaded() {
    static XcbLibrary xcb;
    static const bool isWhole = load(xcb);
    return isWhole ? &xcb : nullptr;
}

} // namespace Korvex
