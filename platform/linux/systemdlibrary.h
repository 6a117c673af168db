#pragma once

#include <systemd/sd-bus.h>

namespace Korvex {

/// The D-Bus client of libsystemd, loaded when it is first asked for. It starts no thread and needs
/// no running systemd.
struct SystemdLibrary {
    decltype(&::sd_bus_open_system) openSystem = nullptr;
    decltype(&::sd_bus_flush_close_unref) close = nullptr;
    decltype(&::sd_bus_message_new_method_call) newCall = nullptr;
    decltype(&::sd_bus_message_appendv) append = nullptr;
    decltype(&::sd_bus_message_unref) release = nullptr;
    decltype(&::sd_bus_message_set_allow_interactive_authorization) allowQuestion = nullptr;
    decltype(&::sd_bus_call) call = nullptr;
    decltype(&::sd_bus_message_read) read = nullptr;
    decltype(&::sd_bus_message_enter_container) enter = nullptr;
    decltype(&::sd_bus_error_free) freeError = nullptr;

    /// Null where the library is not installed.
    static const SystemdLibrary* loaded();
};

} // namespace Korvex
