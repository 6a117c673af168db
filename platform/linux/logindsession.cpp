#include "platform/linux/systembus.h"
#include "platform/replaceable.h"
#include "platform/sessioncontrol.h"

#include <array>
#include <string>
#include <unistd.h>

namespace Korvex {

namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr BusObject manager{service, "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
constexpr std::chrono::minutes patience{1}; // as long as the platform waits by default

OSErr numberOf(const BusReply& reply) {
    if (reply)
        return noErr;
    struct Row {
        const char* name;
        OSErr number;
    };
    constexpr std::array rows{
        Row{"", connectionInvalid},
        Row{SD_BUS_ERROR_SERVICE_UNKNOWN, connectionInvalid},
        Row{SD_BUS_ERROR_DISCONNECTED, connectionInvalid},
        Row{SD_BUS_ERROR_NO_REPLY, errAETimeout},
        Row{SD_BUS_ERROR_TIMEOUT, errAETimeout},
        Row{SD_BUS_ERROR_ACCESS_DENIED, errAEPrivilegeError},
        Row{SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED, errAEPrivilegeError},
        Row{"org.freedesktop.login1.NoSessionForPID", procNotFound},
    };
    for (const Row& row : rows) {
        if (reply.errorName() == row.name)
            return row.number;
    }
    return errAEEventFailed;
}

/// Ends the session that this process belongs to.
OSErr endSession(SystemBus& bus) {
    const BusReply found =
        bus.call(manager, "GetSessionByPID", patience, "u", static_cast<std::uint32_t>(getpid()));
    const char* path = nullptr;
    if (!found || !found.read("o", &path))
        return numberOf(found);
    const BusObject session{service, path, "org.freedesktop.DBus.Properties"};
    const BusReply property =
        bus.call(session, "Get", patience, "ss", "org.freedesktop.login1.Session", "Id");
    const char* id = nullptr;
    if (!property || !property.read("v", "s", &id))
        return property ? errAEEventFailed : numberOf(property);
    return numberOf(bus.call(manager, "TerminateSession", patience, "s", id));
}

class LogindSessionControl final : public SessionControl {
public:
    OSErr send(SessionRequest request) override {
        constexpr int mayAsk = 1;
        SystemBus bus;
        if (request == SessionRequest::LogOut)
            return endSession(bus);
        const char* const method = request == SessionRequest::Restart ? "Reboot" : "PowerOff";
        return numberOf(bus.call(manager, method, patience, "b", mayAsk));
    }
};

} // namespace

SessionControl& sessionControl() {
    static LogindSessionControl control;
    return inForce<SessionControl>(control);
}

} // namespace Korvex
