#include "server.h"

#include "limits.h"
#include "log.h"
#include "peer.h"

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <utility>

namespace Kxqtsd {

using Korvex::Descriptor;

Server::Server(Loop& usedLoop, Exchange& usedExchange, std::string exchangeName)
    : loop(usedLoop), exchange(usedExchange), name(std::move(exchangeName)) {}

Server::~Server() {
    close();
    while (!sessions.empty()) {
        const std::shared_ptr<Session> session = *sessions.begin();
        session->end();
    }
}

bool Server::listen(unsigned short port) {
    Descriptor made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int on = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // A daemon that was started anew need not wait for its old connections to be forgotten.
    setsockopt(made.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(made.get(), Limits::waitingConnections) != 0)
        return false;
    listener = std::move(made);
    watchListener();
    return true;
}

void Server::watchListener() {
    loop.watch(listener.get(), EPOLLIN, [this] { accept(); });
}

void Server::close() {
    if (!listener.isOpen())
        return;
    loop.forget(listener.get());
    listener.reset();
}

void Server::accept() {
    while (sessions.size() < Limits::sessions) {
        Descriptor connection(
            accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!connection.isOpen())
            return;
        begin(std::move(connection));
    }
    // The others wait in the system until a session has ended.
    loop.forget(listener.get());
}

void Server::begin(Descriptor connection) {
    const std::optional<uid_t> user = ownerOfPeer(connection.get());
    const bool served = user && isServed(*user);
    if (!served) {
        noteRefusal(user ? "user " + std::to_string(*user) : "nobody known");
        if (refused == Limits::refusedSessions)
            return;
        ++refused;
    }
    // The session's own pointer to itself is known only after it was made.
    auto place = std::make_shared<std::weak_ptr<Session>>();
    const auto session = std::make_shared<Session>(loop, exchange, std::move(connection), served,
                                                   [this, place, served] {
                                                       sessions.erase(place->lock());
                                                       refused -= served ? 0 : 1;
                                                       if (listener.isOpen())
                                                           watchListener();
                                                   });
    *place = session;
    sessions.insert(session);
    session->begin();
}

void Server::noteRefusal(const std::string& who) {
    const auto now = Loop::Clock::now();
    if (now < nextRefusalLine) {
        ++unreported;
        return;
    }
    nextRefusalLine = now + Limits::refusalLinePause;
    const unsigned others = std::exchange(unreported, 0);
    Log::warning(name + " refused to " + who +
                 (others > 0 ? ", and " + std::to_string(others) + " more before" : ""));
}

} // namespace Kxqtsd
