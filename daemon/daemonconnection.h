#pragma once

#include <QByteArrayView>

#include <memory>

class QTcpSocket;

/// What the two exchanges with the root daemon do alike: their codes for a connection's troubles,
/// and the socket error that each leaves for the message.
namespace Korvex::DaemonConnection {

/// Makes a socket and connects it, unless there is one. \return 0, 12, 30761 or 30766.
int open(std::unique_ptr<QTcpSocket>& socket, unsigned short port, unsigned timeout,
         int& lastError);

/// Whether a socket may be used now. \return 0, 30761 without a socket, 30766 when not connected.
int check(const std::unique_ptr<QTcpSocket>& socket, int& lastError);

/// Sends a record and what follows it on a socket that \ref check found good. \return 0 or 30768.
int send(QTcpSocket& socket, QByteArrayView record, QByteArrayView payload, int& lastError);

/// Waits for data on a socket that \ref check found good. \return 0 or 101.
int waitForData(QTcpSocket& socket, unsigned seconds, int& lastError);

} // namespace Korvex::DaemonConnection
