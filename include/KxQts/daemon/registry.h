/// \file
/// The registry exchange with the root daemon on port 12317: records of a fixed size and a payload
/// in each direction.
///
/// The records' bodies belong to the daemon and its callers; `registryprotocol.h` has those that
/// the `kxqtsd` daemon understands.
#pragma once

#include <KxQts/export.h>

#include <QString>

#include <cstddef>
#include <memory>

class QTcpSocket;

namespace Korvex {

/// The request of the registry exchange, in the byte order of the machine.
struct _D_REG_REQUEST {
    unsigned command;         ///< Echoed by the daemon
    unsigned char body[2324]; ///< Passed through unread
    int payloadLength;        ///< Bytes of payload that follow the record
};
static_assert(sizeof(_D_REG_REQUEST) == 2332 && offsetof(_D_REG_REQUEST, body) == 4 &&
              offsetof(_D_REG_REQUEST, payloadLength) == 2328);

/// The response of the registry exchange.
struct _D_REG_RESPONSE {
    unsigned command;       ///< The command code of the request, echoed
    unsigned char body[16]; ///< Passed through unread
    unsigned status;        ///< 0 for success
    int payloadLength;      ///< Bytes of payload that follow a success
};
static_assert(sizeof(_D_REG_RESPONSE) == 28 && offsetof(_D_REG_RESPONSE, body) == 4 &&
              offsetof(_D_REG_RESPONSE, status) == 20 &&
              offsetof(_D_REG_RESPONSE, payloadLength) == 24);

/// A connection for one registry request, driven by \ref CallDaemonRegistrySession. Used by one
/// thread at a time.
class KXQTS_EXPORT ZRDaemonRegistrySocket {
public:
    /// The longest payload that is believed, in bytes. A response that announces more fails with
    /// 28680 and costs no memory.
    static constexpr int longestPayload = 64 * 1024 * 1024;

    ZRDaemonRegistrySocket();
    /// Closes.
    virtual ~ZRDaemonRegistrySocket();

    ZRDaemonRegistrySocket(const ZRDaemonRegistrySocket&) = delete;
    ZRDaemonRegistrySocket& operator=(const ZRDaemonRegistrySocket&) = delete;

    /// As `ZRDaemonSocket::initSocket`, to port 12317.
    int initSocket();

    /// Sends the record and, when \a payload is given and its length is at least 1, the payload.
    /// \return 0. 30761 without a socket, 30766 when it is not connected, 30768 when the connection
    /// broke.
    int sendDataToSocket(const _D_REG_REQUEST& request, const char* payload);

    /// Waits for the response, and reads the record and the payload once each. What is not there
    /// within a moment (50 ms) is not waited for.
    /// \param response What does not arrive of it is zero.
    /// \param timeoutSeconds 0 stands for 1.
    /// \param payload Receives the payload of a successful response that has one: a buffer of
    /// `response.payloadLength` bytes that the caller releases with `delete[]`; what did not arrive
    /// is zero. Left alone otherwise.
    /// \return 0, also when the daemon's status is another. 30761 and 30766 as above, 101 when
    /// nothing came, 28680 when the payload cannot be allocated.
    int getDataFromSocket(_D_REG_RESPONSE& response, unsigned timeoutSeconds, char*& payload);

    /// Disconnects, waiting for at most \ref timeout until everything is sent.
    void closeSocket();

private:
    std::unique_ptr<QTcpSocket> socket; // the first field, before those that programs set

public:
    unsigned timeout = 2000; ///< Milliseconds; what the waits are counted in
    /// After a failure the `QAbstractSocket::SocketError`, −1 for a socket that was not connected.
    int lastError = -1;
};

} // namespace Korvex

using Korvex::_D_REG_REQUEST;
using Korvex::_D_REG_RESPONSE;
using Korvex::ZRDaemonRegistrySocket;

/// Sends one registry request to the root daemon and takes the response.
///
/// Any thread may call. One registry session at a time, as for \ref CallDaemonSession and
/// independent of it.
/// \param response Receives the response; left alone when none came.
/// \param timeoutSeconds How long the response is waited for; 0 stands for 1.
/// \param responsePayload See `ZRDaemonRegistrySocket::getDataFromSocket`; the caller releases it
/// with `delete[]`.
/// \param requestPayload `request.payloadLength` bytes; may be null.
/// \param message Receives, when given, what went wrong; left alone after a success. One of
/// "ZRDaemonRegistrySocket locked", "init failed(E)", "sendData ZRDaemonRegistrySocket failed(E)",
/// "getData failed(E/R)", "(status =S)", where E is the socket's last error, R the result of
/// reading and S the status, in decimal.
/// \return The daemon's status; 30761 when another session takes too long; otherwise as
/// `ZRDaemonRegistrySocket` says. A response that echoes another command code gives 0 with the
/// message "getData failed".
KXQTS_EXPORT int CallDaemonRegistrySession(const _D_REG_REQUEST& request, _D_REG_RESPONSE& response,
                                           unsigned timeoutSeconds, char*& responsePayload,
                                           const char* requestPayload, QString* message);
