#pragma once

#include <QByteArrayView>

#include <atomic>
#include <memory>

class QTcpSocket;

/// What the daemon exchanges do alike with their connections. All of it works in a thread without
/// an event loop, and none of it ends the process with `SIGPIPE`.
namespace Korvex::Loopback {

/// A socket that is not connected; null when there is no memory.
[[nodiscard]] std::unique_ptr<QTcpSocket> makeSocket();

/// Whether a socket is unconnected, now or after \a ms milliseconds.
[[nodiscard]] bool becomesIdle(const QTcpSocket& socket, unsigned ms);

/// Connects to a port of the loopback address, waiting for at most \a ms milliseconds.
[[nodiscard]] bool connect(QTcpSocket& socket, unsigned short port, unsigned ms);

[[nodiscard]] bool isConnected(const QTcpSocket& socket);

/// Hands a record and what follows it to the system, as far as it takes them now; \ref waitForData
/// sends the rest.
/// \return The count of bytes; −1 when the connection broke.
[[nodiscard]] long long send(QTcpSocket& socket, QByteArrayView record, QByteArrayView payload);

/// Waits until there is something to read.
/// \param seconds 0 stands for 1; more than fits in milliseconds for the longest wait there is.
[[nodiscard]] bool waitForData(QTcpSocket& socket, unsigned seconds);

/// How long a peer that has begun to answer gets to finish, in milliseconds. Only tests change it.
extern std::atomic<int> moment;

/// Gives a peer that has begun to answer its \ref moment: waits until there are \a size bytes to
/// read. Many a daemon sends what belongs together in two pieces.
void awaitRest(QTcpSocket& socket, long long size);

/// Disconnects and deletes, giving unsent bytes \a ms milliseconds to leave. Null is left alone.
void close(std::unique_ptr<QTcpSocket>& socket, unsigned ms);

} // namespace Korvex::Loopback
