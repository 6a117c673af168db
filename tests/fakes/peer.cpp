#include "fakes/peer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace KxTest {

Connection::~Connection() {
    if (descriptor >= 0)
        close(descriptor);
}

std::string Connection::read(std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = recv(descriptor, bytes.data() + done, size - done, 0);
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

std::string Connection::readToEnd() {
    std::string bytes;
    for (std::string more = read(1); !more.empty(); more = read(1))
        bytes += more;
    return bytes;
}

void Connection::write(const std::string& bytes) {
    EXPECT_EQ(send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
}

void Connection::reset() {
    const linger atOnce{1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    close(descriptor);
    descriptor = -1;
}

namespace {

/// \param port The one to listen at, or 0. Receives the one that was had.
int listenAt(unsigned short& port, int waiting) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0) << strerror(errno);
    EXPECT_EQ(listen(listener, waiting), 0);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
    return listener;
}

} // namespace

Peer::Peer(unsigned short toListenAt, Script toFollow)
    : script(std::move(toFollow)), usedPort(toListenAt), listener(listenAt(usedPort, 64)) {
    server = std::thread(&Peer::serve, this);
}

DeafPeer::DeafPeer(unsigned short toListenAt)
    : usedPort(toListenAt), listener(listenAt(usedPort, 0)) {}

DeafPeer::~DeafPeer() {
    close(listener);
}

Peer::~Peer() {
    shutdown(listener, SHUT_RDWR);
    server.join();
    close(listener);
}

void Peer::serve() {
    for (int accepted = 0; (accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
        ++count;
        Connection connection(accepted);
        script(connection);
    }
}

std::string words(const std::vector<unsigned>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(unsigned)};
}

unsigned wordAt(const std::string& bytes, std::size_t offset) {
    unsigned value = 0;
    EXPECT_LE(offset + sizeof value, bytes.size());
    if (offset + sizeof value <= bytes.size())
        std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

} // namespace KxTest
