#include "daemon/loopback.h"

#include "platform/brokenpipe.h"
#include "platform/clock.h"
#include "platform/scopes.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <chrono>
#include <limits>
#include <new>

namespace Korvex::Loopback {

constinit std::atomic<int> moment{50};

namespace {

bool isIdle(const QTcpSocket& socket) {
    return socket.state() == QAbstractSocket::UnconnectedState;
}

int waitTime(unsigned long long ms) {
    return static_cast<int>(
        std::min(ms, static_cast<unsigned long long>(std::numeric_limits<int>::max())));
}

} // namespace

std::unique_ptr<QTcpSocket> makeSocket() {
    try {
        auto socket = std::make_unique<QTcpSocket>();
        // Whatever proxy the program uses for the network, the daemon is on this machine.
        socket->setProxy(QNetworkProxy::NoProxy);
        return socket;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool becomesIdle(const QTcpSocket& socket, unsigned ms) {
    if (!isIdle(socket))
        systemClock().sleep(std::chrono::milliseconds(ms));
    return isIdle(socket);
}

bool connect(QTcpSocket& socket, unsigned short port, unsigned ms) {
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port, QIODevice::ReadWrite);
    return socket.waitForConnected(waitTime(ms));
}

bool isConnected(const QTcpSocket& socket) {
    return socket.state() == QAbstractSocket::ConnectedState;
}

long long send(QTcpSocket& socket, QByteArrayView record, QByteArrayView payload) {
    const BrokenPipeGuard guard;
    long long written = socket.write(record.data(), record.size());
    if (!payload.isEmpty())
        written += socket.write(payload.data(), payload.size());
    // Without an event loop nothing would leave before the next wait.
    socket.flush();
    return isConnected(socket) ? written : -1;
}

bool waitForData(QTcpSocket& socket, unsigned seconds) {
    constexpr unsigned long long msPerSecond = 1000;
    const BrokenPipeGuard guard;
    return socket.bytesAvailable() > 0 ||
           socket.waitForReadyRead(waitTime(std::max(seconds, 1u) * msPerSecond));
}

void awaitRest(QTcpSocket& socket, long long size) {
    const BrokenPipeGuard guard;
    const QDeadlineTimer end(moment);
    while (socket.bytesAvailable() < size && !end.hasExpired() &&
           socket.waitForReadyRead(static_cast<int>(end.remainingTime()))) {
    }
}

void close(std::unique_ptr<QTcpSocket>& socket, unsigned ms) {
    if (!socket)
        return;
    // Destructors come here too: no thread may be unwound from them.
    const TerminationDeferred untilClosed;
    const BrokenPipeGuard guard;
    try {
        socket->disconnectFromHost();
        if (isIdle(*socket) || socket->waitForDisconnected(waitTime(ms)))
            socket->close();
    } catch (const std::bad_alloc&) {
        // Without a farewell, then.
    }
    socket.reset();
}

} // namespace Korvex::Loopback
