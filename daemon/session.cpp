#include <KxQts/daemon/session.h>

#include "daemon/loopback.h"

#include <KxQts/errors.h>

#include <QTcpSocket>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

namespace Korvex {

namespace {

constexpr unsigned parameterSlots = 4;
constexpr unsigned longestPayload = 1024;
constexpr unsigned connectWaits = 4;

/// What precedes the payload on the wire.
struct RequestHead {
    unsigned command;
    unsigned parameters[parameterSlots];
    unsigned length;
};
static_assert(sizeof(RequestHead) == 24 && offsetof(RequestHead, parameters) == 4 &&
              offsetof(RequestHead, length) == 20);

int failWith(int error) {
    errno = error;
    return -1;
}

bool isConnected(const std::unique_ptr<QTcpSocket>& socket) {
    return socket && Loopback::isConnected(*socket);
}

/// Gives a response that has begun to arrive its moment, as far as it is announced and fits.
void awaitRest(QTcpSocket& socket, long long room) {
    constexpr long long headSize = offsetof(wdaemon_response, data);
    wdaemon_response response{};
    Loopback::awaitRest(socket, std::min(room, headSize));
    if (room > headSize && socket.peek(reinterpret_cast<char*>(&response), headSize) == headSize)
        Loopback::awaitRest(socket,
                            std::min(room, headSize + std::min(response.length, longestPayload)));
}

/// \return The bytes that the response is to the request, or an error.
int check(const wdaemon_response& response, int received, unsigned cmd) {
    constexpr int head = offsetof(wdaemon_response, data);
    const bool whole = received >= head &&
                       response.length == static_cast<unsigned>(received - head) &&
                       response.command == cmd;
    return whole ? static_cast<int>(response.status) : Error::TransferFailed;
}

} // namespace

WDaemonSocket::WDaemonSocket() = default;

WDaemonSocket::~WDaemonSocket() {
    Loopback::close(socket, timeout);
}

int WDaemonSocket::init(unsigned short toPort) try {
    if (socket)
        return toPort == port ? Error::Connected : Error::InvalidArgument;
    socket = Loopback::makeSocket();
    if (!socket)
        return Error::NoMemory;
    if (!Loopback::becomesIdle(*socket, timeout))
        return Error::Connected;
    if (!Loopback::connect(*socket, toPort, connectWaits * timeout))
        return Error::NotConnected;
    port = toPort;
    return Error::None;
} catch (const std::bad_alloc&) {
    return Error::NoMemory;
}

int WDaemonSocket::send(unsigned cmd, const unsigned* params, unsigned count,
                        const unsigned char* data, unsigned len) try {
    if (!isConnected(socket))
        return failWith(Error::NotConnected);
    if ((params && count > parameterSlots) || (data && len > longestPayload))
        return failWith(Error::InvalidArgument);
    RequestHead head{cmd, {}, data ? len : 0};
    if (params)
        std::copy_n(params, count, head.parameters);
    const long long sent =
        Loopback::send(*socket, QByteArrayView(reinterpret_cast<const char*>(&head), sizeof head),
                       QByteArrayView(data, head.length));
    return sent < 0 ? failWith(Error::TransferFailed) : static_cast<int>(sent);
} catch (const std::bad_alloc&) {
    return failWith(Error::NoMemory);
}

int WDaemonSocket::recv(wdaemon_response* buf, unsigned size, unsigned timeoutSeconds) try {
    if (!isConnected(socket))
        return failWith(Error::NotConnected);
    if (!buf)
        return failWith(Error::InvalidArgument);
    if (!Loopback::waitForData(*socket, timeoutSeconds))
        return failWith(Error::TimedOut);
    awaitRest(*socket, size);
    return static_cast<int>(socket->read(reinterpret_cast<char*>(buf), size));
} catch (const std::bad_alloc&) {
    return failWith(Error::NoMemory);
}

void WDaemonSocket::close() {
    Loopback::close(socket, timeout);
}

} // namespace Korvex

int daemonSession(unsigned short port, unsigned cmd, unsigned timeoutSeconds,
                  const unsigned* params, unsigned count, const unsigned char* data, unsigned len,
                  unsigned char* out, unsigned* outLen) {
    Korvex::WDaemonSocket socket;
    if (const int error = socket.init(port))
        return error;
    if (socket.send(cmd, params, count, data, len) < 0)
        return errno;
    Korvex::wdaemon_response response{};
    const int received = socket.recv(&response, sizeof response, timeoutSeconds);
    if (received < 0)
        return errno;
    const int status = Korvex::check(response, received, cmd);
    if (status == 0 && out && outLen) {
        *outLen = std::min(response.length, *outLen);
        std::memcpy(out, response.data, *outLen);
    }
    return status;
}
