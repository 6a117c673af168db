#pragma once

#include "platform/linux/systemdlibrary.h"

#include <chrono>
#include <memory>

namespace Korvex {

/// A service on the system bus whose methods are called.
struct BusObject {
    const char* service;
    const char* path;
    const char* interface;
};

/// The answer to a call: what it returned, or why it failed.
class BusReply {
public:
    BusReply() = default;
    BusReply(const SystemdLibrary& with, sd_bus_message* message) : systemd(&with), held(message) {}
    explicit BusReply(const char* errorName) : error(errorName) {}

    BusReply(BusReply&& other) noexcept;
    BusReply(const BusReply&) = delete;
    BusReply& operator=(const BusReply&) = delete;
    BusReply& operator=(BusReply&&) = delete;
    ~BusReply();

    explicit operator bool() const { return held != nullptr; }

    /// The D-Bus name of the error; empty when there is no bus at all.
    [[nodiscard]] const std::string& errorName() const { return error; }

    /// Reads values in the bus's notation. \return Whether they were there.
    template <class... Values>
    bool read(const char* types, Values*... values) const {
        return systemd->read(held, types, values...) > 0;
    }

    /// Enters a structure, array or entry; it is left at the end of the reply only.
    [[nodiscard]] bool enter(char type, const char* contents) const {
        return systemd->enter(held, type, contents) > 0;
    }

private:
    const SystemdLibrary* systemd = nullptr;
    sd_bus_message* held = nullptr;
    std::string error;
};

/// A connection to the system bus, for as long as it lives. One thread uses it.
class SystemBus {
public:
    SystemBus();
    ~SystemBus();
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;

    /// Calls a method and waits for the answer. The service may ask the user first.
    /// \param types Of the arguments, in the bus's notation; the arguments follow.
    [[nodiscard]] BusReply call(const BusObject& object, const char* method,
                                std::chrono::microseconds limit, const char* types, ...);

private:
    const SystemdLibrary* const systemd;
    sd_bus* bus = nullptr;
};

} // namespace Korvex
