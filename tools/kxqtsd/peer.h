#pragma once

#include <optional>
#include <sys/types.h>

namespace Kxqtsd {

/// The user who owns the other end of a connection over the loopback address, as the kernel knows
/// it. \param connection The daemon's own end. \return Nothing when the other end is no open socket
/// of a process of this machine (any more): nobody is known then, and nobody must be trusted.
std::optional<uid_t> ownerOfPeer(int connection);

/// Whether a user is served: root, and the members of the administrators' group.
bool isServed(uid_t user);

} // namespace Kxqtsd
