#include "platform/linux/systemdlibrary.h"

#include "platform/linux/symbol.h"

#include <dlfcn.h>

namespace Korvex {

namespace {

/// \return Whether all is there.
bool load(SystemdLibrary& systemd) {
    void* const library = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    return library && findSymbol(library, "sd_bus_open_system", systemd.openSystem) &&
           findSymbol(library, "sd_bus_flush_close_unref", systemd.close) &&
           findSymbol(library, "sd_bus_message_new_method_call", systemd.newCall) &&
           findSymbol(library, "sd_bus_message_appendv", systemd.append) &&
           findSymbol(library, "sd_bus_message_unref", systemd.release) &&
           findSymbol(library, "sd_bus_message_set_allow_interactive_authorization",
                      systemd.allowQuestion) &&
           findSymbol(library, "sd_bus_call", systemd.call) &&
           findSymbol(library, "sd_bus_message_read", systemd.read) &&
           findSymbol(library, "sd_bus_message_enter_container", systemd.enter) &&
           findSymbol(library, "sd_bus_error_free", systemd.freeError);
}

} // namespace

const SystemdLibrary* SystemdLibrary::loaded() {
    static SystemdLibrary systemd;
    static const bool isWhole = load(systemd);
    return isWhole ? &systemd : nullptr;
}

} // namespace Korvex
