#pragma once

#include <cstddef>
#include <cstdint>

/// What travels between the library and a driver's control.
///
/// A control is a folder, `<run-time folder>/control/<name>/`, that holds one local socket of type
/// `SOCK_SEQPACKET` a unit, named by the unit's number in decimal. `docs/kernel-control.md`
/// describes the exchange for authors of drivers.
namespace Korvex::KernelWire {

/// The one byte that the driver sends to a new connection.
using Greeting = std::uint8_t;
inline constexpr Greeting ready = 0;
inline constexpr Greeting busy = 16; ///< Any other number but 0 is an error number as well

enum class Kind : std::uint32_t { Exchange = 1, Command = 2 };

/// What a packet to the driver begins with; the request follows.
struct RequestHead {
    Kind kind;
    std::uint32_t option;   ///< Option number, or command number
    std::uint32_t sequence; ///< Repeated in the reply
};
static_assert(sizeof(RequestHead) == 12);

/// What a packet from the driver begins with; the reply follows.
struct ReplyHead {
    std::uint32_t sequence;
    std::int32_t error; ///< 0, or an error number for the client's `errno`
};
static_assert(sizeof(ReplyHead) == 8);

/// The longest request and the longest reply, in bytes, heads not counted.
inline constexpr std::size_t longestTransfer = 128 * 1024;

} // namespace Korvex::KernelWire
