#pragma once

#include <memory>

namespace Korvex {

/// A driver's control that was found by its name.
class KernelControl {
public:
    virtual ~KernelControl() = default;

    /// Connects an unconnected socket of the channel to a unit.
    /// \return 0; −1 with `errno` 16 when the unit is taken, another number when it cannot be had.
    /// After a failure the same socket may be connected to another unit.
    virtual int connect(int socket, unsigned unit) = 0;
};

/// The system's channel to its drivers. Any thread may call any operation.
class KernelChannel {
public:
    virtual ~KernelChannel() = default;

    /// Makes an unconnected socket. \return A descriptor that the caller closes with `close`; −1
    /// with `errno`.
    [[nodiscard]] virtual int open() = 0;

    /// Looks a control up by its name. \param socket One that \ref open made.
    /// \return Null with `errno` when nobody offers it.
    [[nodiscard]] virtual std::unique_ptr<KernelControl> find(int socket, const char* name) = 0;

    /// Sends a request of \a size bytes and receives the reply into the same buffer, whose room is
    /// the same. \param size Receives the size of the reply.
    /// \return 0; −1 with `errno` as the driver or the system left it.
    virtual int exchange(int socket, unsigned option, void* value, unsigned* size) = 0;

    /// Sends a command that carries four bytes without meaning. \return As \ref exchange.
    virtual int command(int socket, unsigned number) = 0;
};

/// The channel in force.
KernelChannel& kernelChannel();

} // namespace Korvex
