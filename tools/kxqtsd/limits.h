#pragma once

#include <chrono>
#include <cstddef>

/// What one peer can cost the daemon.
namespace Kxqtsd::Limits {

inline constexpr std::size_t sessions = 256;       ///< At the same time; others wait their turn
inline constexpr std::size_t refusedSessions = 32; ///< Of these, of users who are not served
inline constexpr int waitingConnections = 512;     ///< That the system keeps for a listener

inline constexpr auto requestTime = std::chrono::seconds(10);  ///< Until a request is there
inline constexpr auto responseTime = std::chrono::seconds(10); ///< Until a response is taken
inline constexpr auto partingTime = std::chrono::seconds(2);   ///< Until the peer has closed
inline constexpr auto commandTime = std::chrono::hours(1);     ///< Until a command has ended
inline constexpr auto endingTime = std::chrono::seconds(5);    ///< From asking to killing it

inline constexpr auto refusalLinePause = std::chrono::seconds(1); ///< Between two lines on it

} // namespace Kxqtsd::Limits
