#pragma once

#include <KxQts/platformtypes.h>

#include <cstdint>

namespace Korvex {

/// What the system can be asked to do with the machine and the user's session.
enum class SessionRequest : std::uint8_t { Restart, LogOut, ShutDown };

/// Who ends sessions and the work of the machine. Any thread may call.
class SessionControl {
public:
    virtual ~SessionControl() = default;

    /// Hands a request over; what comes of it is not waited for, but the user may be asked for a
    /// password meanwhile.
    /// \return 0 or a negative error number of the platform.
    [[nodiscard]] virtual OSErr send(SessionRequest request) = 0;
};

/// The session control in force.
SessionControl& sessionControl();

} // namespace Korvex
