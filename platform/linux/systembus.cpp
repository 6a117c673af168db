#include "platform/linux/systembus.h"

#include "platform/scopes.h"

#include <cstdarg>
#include <utility>

namespace Korvex {

namespace {

constexpr const char* outOfMemory = SD_BUS_ERROR_NO_MEMORY;

} // namespace

BusReply::BusReply(BusReply&& other) noexcept
    : systemd(other.systemd),
      held(std::exchange(other.held, nullptr)),
      error(std::move(other.error)) {}

BusReply::~BusReply() {
    if (held)
        systemd->release(held);
}

SystemBus::SystemBus() : systemd(SystemdLibrary::loaded()) {
    if (systemd && systemd->openSystem(&bus) < 0)
        bus = nullptr;
}

SystemBus::~SystemBus() {
    const TerminationDeferred untilClosed;
    if (bus)
        systemd->close(bus);
}

BusReply SystemBus::call(const BusObject& object, const char* method,
                         std::chrono::microseconds limit, const char* types, ...) {
    if (!bus)
        return BusReply();
    sd_bus_message* made = nullptr;
    if (systemd->newCall(bus, &made, object.service, object.path, object.interface, method) < 0)
        return BusReply(outOfMemory);
    const BusReply question(*systemd, made); // for its release
    va_list arguments;
    va_start(arguments, types);
    const int appended = systemd->append(made, types, arguments);
    va_end(arguments);
    if (appended < 0 || systemd->allowQuestion(made, 1) < 0)
        return BusReply(outOfMemory);
    sd_bus_error error{};
    sd_bus_message* answer = nullptr;
    const auto usec = static_cast<std::uint64_t>(limit.count());
    if (systemd->call(bus, made, usec, &error, &answer) >= 0)
        return BusReply(*systemd, answer);
    BusReply failure(error.name ? error.name : SD_BUS_ERROR_DISCONNECTED);
    systemd->freeError(&error);
    return failure;
}

} // namespace Korvex
