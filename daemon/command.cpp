#include <KxQts/daemon/command.h>

#include "daemon/daemonconnection.h"
#include "daemon/diagnostic.h"
#include "daemon/loopback.h"
#include "daemon/sessionlock.h"
#include "support/wipe.h"

#include <KxQts/errors.h>
#include <KxQts/support/text.h>

#include <QTcpSocket>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>

namespace Korvex {

namespace {

constexpr unsigned short commandPort = 12316;
constexpr unsigned parameterSlots = 4;

/// The command request as it is on the wire.
struct CommandRequest {
    unsigned command;
    unsigned parameters[parameterSlots];
    char text[2048]; ///< Ended by a zero byte, and filled with them
};
static_assert(sizeof(CommandRequest) == 2068 && offsetof(CommandRequest, parameters) == 4 &&
              offsetof(CommandRequest, text) == 20);

/// The command response as it is on the wire.
struct CommandResponse {
    unsigned command;
    unsigned status;
};
static_assert(sizeof(CommandResponse) == 8 && offsetof(CommandResponse, status) == 4);

int exchange(ZRDaemonSocket& socket, unsigned cmd, unsigned timeoutSeconds, const QString* text,
             const unsigned* params, unsigned count, QString* message) {
    using Diagnostic::report;
    if (const int error = socket.initSocket()) {
        report(message, QStringLiteral("init failed(%1)").arg(socket.lastError));
        return error;
    }
    const WCString latin1(text ? *text : QString());
    if (const int error =
            socket.sendDataToSocket(cmd, text ? latin1.str : nullptr, params, count)) {
        report(message, QStringLiteral("sendData failed(%1)").arg(socket.lastError));
        return error;
    }
    unsigned response[2] = {};
    const int result = socket.getDataFromSocket(response, timeoutSeconds);
    if (result == 0 && response[0] == cmd)
        return Diagnostic::concludeWith(response[1], message);
    // The answer to another command is success all the same: callers rely on it.
    report(message, QStringLiteral("getData failed(%1/%2)").arg(socket.lastError).arg(response[0]));
    return result;
}

} // namespace

ZRDaemonSocket::ZRDaemonSocket() = default;

ZRDaemonSocket::~ZRDaemonSocket() {
    Loopback::close(socket, timeout);
}

int ZRDaemonSocket::initSocket() try {
    return DaemonConnection::open(socket, commandPort, timeout, lastError);
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

int ZRDaemonSocket::sendDataToSocket(unsigned cmd, const char* text, const unsigned* params,
                                     unsigned count) try {
    if (const int error = DaemonConnection::check(socket, lastError))
        return error;
    CommandRequest request{cmd, {}, {}};
    const WipedAtEnd wiped(request); // command lines may hold secrets
    if (params)
        std::copy_n(params, std::min(count, parameterSlots), request.parameters);
    if (text)
        std::memcpy(request.text, text, strnlen(text, sizeof request.text - 1));
    const QByteArrayView bytes(reinterpret_cast<const char*>(&request), sizeof request);
    return DaemonConnection::send(*socket, bytes, {}, lastError);
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

int ZRDaemonSocket::getDataFromSocket(unsigned* response, unsigned timeoutSeconds) try {
    if (const int error = DaemonConnection::check(socket, lastError))
        return error;
    if (const int error = DaemonConnection::waitForData(*socket, timeoutSeconds, lastError))
        return error;
    Loopback::awaitRest(*socket, sizeof(CommandResponse));
    socket->read(reinterpret_cast<char*>(response), sizeof(CommandResponse));
    return Error::None;
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

void ZRDaemonSocket::closeSocket() {
    Loopback::close(socket, timeout);
}

} // namespace Korvex

int CallDaemonSession(unsigned cmd, unsigned timeoutSeconds, const QString* text,
                      const unsigned* params, unsigned count, QString* message) try {
    static constinit Korvex::SessionSlot current{nullptr};
    const Korvex::SessionLock lock(current);
    if (!lock.isTaken()) {
        Korvex::Diagnostic::report(message, QStringLiteral("socket locked"));
        return Korvex::Error::SocketUnavailable;
    }
    Korvex::ZRDaemonSocket socket;
    return Korvex::exchange(socket, cmd, timeoutSeconds, text, params, count, message);
} catch (const std::bad_alloc&) {
    return Korvex::Error::NoMemory;
}
