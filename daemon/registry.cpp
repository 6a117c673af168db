#include <KxQts/daemon/registry.h>

#include "daemon/daemonconnection.h"
#include "daemon/diagnostic.h"
#include "daemon/loopback.h"
#include "daemon/sessionlock.h"

#include <KxQts/errors.h>

#include <QTcpSocket>

#include <algorithm>
#include <new>

namespace Korvex {

namespace {

constexpr unsigned short registryPort = 12317;

QByteArrayView bytesOf(const _D_REG_REQUEST& request) {
    return {reinterpret_cast<const char*>(&request), sizeof request};
}

/// Reads once; what does not come is zero.
void readInto(QTcpSocket& socket, char* buffer, long long size) {
    Loopback::awaitRest(socket, size);
    const long long received = std::max(socket.read(buffer, size), 0LL);
    std::fill(buffer + received, buffer + size, '\0');
}

int receivePayload(QTcpSocket& socket, int length, char*& payload) {
    // The length is another program's word: it is believed up to a limit, and its memory is not
    // touched before the system has given it.
    char* received = length <= ZRDaemonRegistrySocket::longestPayload
                         ? new (std::nothrow) char[static_cast<std::size_t>(length)]
                         : nullptr;
    if (!received)
        return Error::NoPayloadMemory;
    payload = received;
    readInto(socket, received, length);
    return Error::None;
}

int exchange(ZRDaemonRegistrySocket& socket, const _D_REG_REQUEST& request,
             _D_REG_RESPONSE& response, unsigned timeoutSeconds, char*& responsePayload,
             const char* requestPayload, QString* message) {
    using Diagnostic::report;
    if (const int error = socket.initSocket()) {
        report(message, QStringLiteral("init failed(%1)").arg(socket.lastError));
        return error;
    }
    if (const int error = socket.sendDataToSocket(request, requestPayload)) {
        report(message,
               QStringLiteral("sendData ZRDaemonRegistrySocket failed(%1)").arg(socket.lastError));
        return error;
    }
    const int result = socket.getDataFromSocket(response, timeoutSeconds, responsePayload);
    if (result == 0 && response.command == request.command)
        return Diagnostic::concludeWith(response.status, message);
    // The second number is the result, where the command exchange names the echoed command; and the
    // answer to another command is success all the same.
    report(message, QStringLiteral("getData failed(%1/%2)").arg(socket.lastError).arg(result));
    return result;
}

} // namespace

ZRDaemonRegistrySocket::ZRDaemonRegistrySocket() = default;

ZRDaemonRegistrySocket::~ZRDaemonRegistrySocket() {
    Loopback::close(socket, timeout);
}

int ZRDaemonRegistrySocket::initSocket() try {
    return DaemonConnection::open(socket, registryPort, timeout, lastError);
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

int ZRDaemonRegistrySocket::sendDataToSocket(const _D_REG_REQUEST& request,
                                             const char* payload) try {
    if (const int error = DaemonConnection::check(socket, lastError))
        return error;
    const bool hasPayload = payload && request.payloadLength > 0;
    return DaemonConnection::send(
        *socket, bytesOf(request),
        hasPayload ? QByteArrayView(payload, request.payloadLength) : QByteArrayView(), lastError);
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

int ZRDaemonRegistrySocket::getDataFromSocket(_D_REG_RESPONSE& response, unsigned timeoutSeconds,
                                              char*& payload) try {
    if (const int error = DaemonConnection::check(socket, lastError))
        return error;
    if (const int error = DaemonConnection::waitForData(*socket, timeoutSeconds, lastError))
        return error;
    readInto(*socket, reinterpret_cast<char*>(&response), sizeof response);
    if (response.status != 0 || response.payloadLength <= 0)
        return Error::None;
    return receivePayload(*socket, response.payloadLength, payload);
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

void ZRDaemonRegistrySocket::closeSocket() {
    Loopback::close(socket, timeout);
}

} // namespace Korvex

int CallDaemonRegistrySession(const _D_REG_REQUEST& request, _D_REG_RESPONSE& response,
                              unsigned timeoutSeconds, char*& responsePayload,
                              const char* requestPayload, QString* message) try {
    static constinit Korvex::SessionSlot current{nullptr};
    const Korvex::SessionLock lock(current);
    if (!lock.isTaken()) {
        Korvex::Diagnostic::report(message, QStringLiteral("ZRDaemonRegistrySocket locked"));
        return Korvex::Error::SocketUnavailable;
    }
    Korvex::ZRDaemonRegistrySocket socket;
    return Korvex::exchange(socket, request, response, timeoutSeconds, responsePayload,
                            requestPayload, message);
} catch (const std::bad_alloc&) {
    return Korvex::Error::NoMemory;
}
