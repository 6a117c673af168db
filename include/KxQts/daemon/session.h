/// \file
/// The general exchange with a daemon of this machine: numbered parameters and a binary payload, to
/// a port that the caller chooses.
///
/// One connection carries one request and one response. Numbers travel in the byte order of the
/// machine. None of this needs an event loop or a `QCoreApplication`, and a daemon that goes away
/// does not raise `SIGPIPE` in its client.
#pragma once

#include <KxQts/export.h>

#include <cstddef>
#include <memory>

class QTcpSocket;

namespace Korvex {

/// The response of the general exchange.
struct wdaemon_response {
    unsigned command;         ///< The command code of the request, echoed
    unsigned status;          ///< 0 for success, else an `errno`-style code
    unsigned length;          ///< Bytes of \ref data that follow on the wire, at most 1024
    unsigned char data[1024]; ///< The first \ref length bytes mean something
};
static_assert(sizeof(wdaemon_response) == 1036 && offsetof(wdaemon_response, data) == 12);

/// A connection for one general exchange, driven by \ref daemonSession.
///
/// A socket is used by one thread at a time.
class KXQTS_EXPORT WDaemonSocket {
public:
    WDaemonSocket();
    /// Closes.
    virtual ~WDaemonSocket();

    WDaemonSocket(const WDaemonSocket&) = delete;
    WDaemonSocket& operator=(const WDaemonSocket&) = delete;

    /// Connects to a port of the loopback address, waiting for at most four times \ref timeout.
    /// \return 0. 57 when no connection comes about; the socket is there all the same from then on,
    /// until \ref close. When there is a socket already, 56 for the port it is connected to and 22
    /// for any other.
    virtual int init(unsigned short port);

    /// Sends the request.
    /// \param params The first \a count of the four parameters; the others are zero. Null for none,
    /// whatever \a count says.
    /// \param data The payload, at most 1024 bytes. Null for none, whatever \a len says.
    /// \return The count of bytes sent, 24 more than the payload's. −1 with `errno` 57 when not
    /// connected, 22 for a bad argument, 5 when the connection broke.
    virtual int send(unsigned cmd, const unsigned* params, unsigned count,
                     const unsigned char* data, unsigned len);

    /// Waits for the response and reads once. What follows within a moment (50 ms) belongs to
    /// it; what comes later is not waited for.
    /// \param size Room in \a buf, in bytes.
    /// \param timeoutSeconds 0 stands for 1.
    /// \return The count of bytes read. −1 with `errno` 57 when not connected, 101 when nothing
    /// came, 22 without a buffer.
    virtual int recv(wdaemon_response* buf, unsigned size, unsigned timeoutSeconds);

    /// Disconnects, waiting for at most \ref timeout until everything is sent.
    virtual void close();

private:
    std::unique_ptr<QTcpSocket> socket; // the first field, before those that programs set

public:
    unsigned timeout = 2000; ///< Milliseconds; what the waits are counted in
    unsigned short port = 0; ///< That of the last successful \ref init
};

} // namespace Korvex

using Korvex::wdaemon_response;
using Korvex::WDaemonSocket;

/// Connects, sends one request, takes the response and closes.
///
/// Any number of threads may have sessions at the same time; those of one thread follow each other.
/// \param timeoutSeconds How long the response is waited for; 0 stands for 1.
/// \param params,count,data,len See `WDaemonSocket::send`.
/// \param out,outLen Receive the data of a successful response, when both are given: *\a outLen is
/// the room in bytes before and the count of bytes copied after. Left alone otherwise.
/// \return The daemon's status; 56, 57, 22 or 101 as `WDaemonSocket` says; 5 when the connection
/// broke or the response is no answer to this request: shorter than 12 bytes, a length that is not
/// the one received, another command code.
KXQTS_EXPORT int daemonSession(unsigned short port, unsigned cmd, unsigned timeoutSeconds,
                               const unsigned* params, unsigned count, const unsigned char* data,
                               unsigned len, unsigned char* out, unsigned* outLen);
