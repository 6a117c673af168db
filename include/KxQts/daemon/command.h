/// \file
/// The command exchange with the root daemon on port 12316: parameters and a text, answered with a
/// status.
///
/// As for the general exchange (`session.h`) neither an event loop nor a `QCoreApplication` is
/// needed.
#pragma once

#include <KxQts/export.h>

#include <QString>

#include <memory>

class QTcpSocket;

namespace Korvex {

/// A connection for one command, driven by \ref CallDaemonSession. Used by one thread at a time.
class KXQTS_EXPORT ZRDaemonSocket {
public:
    ZRDaemonSocket();
    /// Closes.
    virtual ~ZRDaemonSocket();

    ZRDaemonSocket(const ZRDaemonSocket&) = delete;
    ZRDaemonSocket& operator=(const ZRDaemonSocket&) = delete;

    /// Connects to the root daemon, waiting for at most five times \ref timeout.
    /// \return 0, also when there is a socket already. 30766 when no connection comes about, 12
    /// without memory.
    int initSocket();

    /// Sends the request, 2068 bytes.
    /// \param text Of which at most 2047 bytes are sent. May be null.
    /// \param params,count The parameters; at most four are sent. Null for none.
    /// \return 0. 30761 without a socket, 30766 when it is not connected, 30768 when the connection
    /// broke.
    int sendDataToSocket(unsigned cmd, const char* text, const unsigned* params, unsigned count);

    /// Waits for the response and reads once, a moment (50 ms) after it has begun at the latest.
    /// \param response Room for the echoed command code and the status. A response that is too
    /// short leaves the rest as it was, and is no error.
    /// \param timeoutSeconds 0 stands for 1.
    /// \return 0. 30761 and 30766 as above, 101 when nothing came.
    int getDataFromSocket(unsigned* response, unsigned timeoutSeconds);

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

using Korvex::ZRDaemonSocket;

/// Sends one command to the root daemon and takes its status.
///
/// Any thread may call. One session at a time: others of the same process wait in steps of 100 ms,
/// for at most 30 s.
/// \param cmd 6 runs \a text as a shell command line with the daemon's rights.
/// \param timeoutSeconds How long the status is waited for; 0 stands for 1.
/// \param text Sent as Latin-1, at most 2047 bytes. May be null.
/// \param params,count See `ZRDaemonSocket::sendDataToSocket`.
/// \param message Receives, when given, what went wrong; left alone after a success. One of "socket
/// locked", "init failed(E)", "sendData failed(E)", "getData failed(E/C)", "(status =S)", where E
/// is the socket's last error, C the echoed command code and S the status, in decimal.
/// \return The daemon's status; 30761 when another session takes too long; otherwise as
/// `ZRDaemonSocket` says. A response that echoes another command code gives 0 with the message
/// "getData failed": callers rely on it.
KXQTS_EXPORT int CallDaemonSession(unsigned cmd, unsigned timeoutSeconds, const QString* text,
                                   const unsigned* params, unsigned count, QString* message);
