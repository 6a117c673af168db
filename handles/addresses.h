#pragma once

#include <cstddef>
#include <cstdint>

/// The addresses that the library gives out as handles, and what it knows of each without reading
/// it.
///
/// A client's mistake with a handle (closing it twice, using it after it was closed, handing a
/// registry key to a call for files) must end in an error and not in a crash. So everything that is
/// given out as a handle stands at an address of the library's own, which serves nothing else
/// before or after; a freed address is given out again as late as possible. All functions may be
/// called by any thread.
namespace Korvex::HandleAddresses {

/// The largest object that is given an address.
inline constexpr std::size_t slotSize = 128;

/// What stands at an address.
enum class Use {
    Unknown, ///< None of the library's addresses: an object that a client made
    Free,    ///< Nothing, or nothing any more
    Object,  ///< A tagged object that no registry knows (yet)
    Event, ///< A tagged object that the registry of its class knows or has known; so the next ones
    Mutex,
    Thread,
    Process,
    Record, ///< Something that is handed out as a handle but is no tagged object
    Ended,  ///< Nothing any more, kept until the client closes the handle
};

inline constexpr std::size_t useCount = static_cast<std::size_t>(Use::Ended) + 1;

/// Room for an object of at most `slotSize` bytes; null when there is no memory.
[[nodiscard]] void* take(Use use) noexcept;

/// Frees an address that \ref take gave.
void giveBack(void* address) noexcept;

/// Frees an address that stands for something ended. \return False, without any effect, for every
/// other pointer.
[[nodiscard]] bool giveBackEnded(void* address) noexcept;

/// Changes what an address that \ref take gave is used for. Other addresses stay unknown.
void setUse(void* address, Use use) noexcept;

/// What an address is used for. Reads nothing at the address.
[[nodiscard]] Use useOf(const void* address) noexcept;

/// Remembers that a client's own object was closed as a handle, until that address comes back as
/// one.
void rememberClosed(const void* address) noexcept;

/// Forgets what \ref rememberClosed remembered: the client has made a handle there again.
void forgetClosed(const void* address) noexcept;

/// The handle of the event log, behind which nothing stands.
inline constexpr std::uintptr_t eventSource = 0x5A5A5A50;

/// Whether a tagged object may stand behind a handle: it is not null, not all ones, none of the
/// predefined registry roots, not the event log, not closed as far as the library knows and none of
/// its other records.
[[nodiscard]] bool mayBeObject(const void* handle) noexcept;

} // namespace Korvex::HandleAddresses
