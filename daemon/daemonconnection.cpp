#include "daemon/daemonconnection.h"

#include "daemon/loopback.h"

#include <KxQts/errors.h>

#include <QTcpSocket>

namespace Korvex::DaemonConnection {

namespace {

constexpr unsigned connectWaits = 5;

int failWith(int code, const QTcpSocket& socket, int& lastError) {
    lastError = socket.error();
    return code;
}

} // namespace

int open(std::unique_ptr<QTcpSocket>& socket, unsigned short port, unsigned timeout,
         int& lastError) {
    if (socket)
        return Error::None;
    socket = Loopback::makeSocket();
    if (!socket)
        return Error::NoMemory;
    if (!Loopback::becomesIdle(*socket, timeout))
        return failWith(Error::SocketUnavailable, *socket, lastError);
    if (!Loopback::connect(*socket, port, connectWaits * timeout))
        return failWith(Error::DaemonNotConnected, *socket, lastError);
    return Error::None;
}

int check(const std::unique_ptr<QTcpSocket>& socket, int& lastError) {
    if (!socket)
        return Error::SocketUnavailable;
    if (Loopback::isConnected(*socket))
        return Error::None;
    lastError = -1;
    return Error::DaemonNotConnected;
}

int send(QTcpSocket& socket, QByteArrayView record, QByteArrayView payload, int& lastError) {
    return Loopback::send(socket, record, payload) == record.size() + payload.size()
               ? Error::None
               : failWith(Error::DaemonWriteFailed, socket, lastError);
}

int waitForData(QTcpSocket& socket, unsigned seconds, int& lastError) {
    return Loopback::waitForData(socket, seconds) ? Error::None
                                                  : failWith(Error::TimedOut, socket, lastError);
}

} // namespace Korvex::DaemonConnection
