#include "session.h"

#include "limits.h"

#include <array>
#include <cerrno>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace Kxqtsd {

namespace {

constexpr unsigned notServed = 1;

bool isTemporary(int error) {
    return error == EAGAIN || error == EINTR;
}

} // namespace

Session::Session(Loop& usedLoop, Exchange& usedExchange, Korvex::Descriptor accepted, bool mayAsk,
                 std::function<void()> ended)
    : loop(usedLoop),
      exchange(usedExchange),
      connection(std::move(accepted)),
      isServed(mayAsk),
      onEnd(std::move(ended)),
      timeLimit(loop.none()) {}

Session::~Session() {
    loop.cancel(timeLimit);
}

void Session::begin() {
    setTimeLimit(Limits::requestTime);
    loop.watch(connection.get(), EPOLLIN, [this] { readRequest(); });
    // Most requests are there already.
    readRequest();
}

void Session::end() {
    if (!connection.isOpen())
        return;
    loop.cancel(timeLimit);
    loop.forget(connection.get());
    connection.reset();
    const auto ended = std::move(onEnd);
    ended();
}

void Session::setTimeLimit(Loop::Clock::duration time) {
    loop.cancel(timeLimit);
    timeLimit = loop.callIn(time, [this, self = shared_from_this()] {
        timeLimit = loop.none();
        end();
    });
}

void Session::readRequest() {
    const auto self = shared_from_this();
    while (const std::optional<std::size_t> size = exchange.sizeOf(received)) {
        if (received.size() >= *size)
            return takeRequest();
        std::array<char, 16'384> bytes{};
        const ssize_t got = recv(connection.get(), bytes.data(),
                                 std::min(bytes.size(), *size - received.size()), 0);
        if (got < 0 && isTemporary(errno))
            return;
        if (got <= 0)
            return end();
        received.append(bytes.data(), static_cast<std::size_t>(got));
    }
    takeRequest();
}

void Session::takeRequest() {
    loop.cancel(timeLimit);
    // Whether the peer is still there matters again when there is something to tell it.
    loop.forget(connection.get());
    constexpr unsigned invalid = 22;
    if (!isServed || !exchange.sizeOf(received))
        return respond(exchange.refuse(received, isServed ? invalid : notServed));
    exchange.answer(received, [weak = weak_from_this()](std::string response) {
        if (const auto self = weak.lock())
            self->respond(std::move(response));
    });
}

void Session::respond(std::string bytes) {
    if (!connection.isOpen())
        return;
    const auto self = shared_from_this();
    toSend = std::move(bytes);
    setTimeLimit(Limits::responseTime);
    writeResponse();
}

void Session::writeResponse() {
    while (sent < toSend.size()) {
        const ssize_t written = send(connection.get(), toSend.data() + sent, toSend.size() - sent,
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (written < 0 && isTemporary(errno))
            return loop.watch(connection.get(), EPOLLOUT,
                              [this, self = shared_from_this()] { writeResponse(); });
        if (written < 0)
            return end();
        sent += static_cast<std::size_t>(written);
    }
    part();
}

void Session::part() {
    // Closing with unread bytes would take the response away from the peer: it closes first.
    shutdown(connection.get(), SHUT_WR);
    setTimeLimit(Limits::partingTime);
    loop.watch(connection.get(), EPOLLIN, [this, self = shared_from_this()] { awaitParting(); });
}

void Session::awaitParting() {
    std::array<char, 16'384> ignored{};
    const ssize_t got = recv(connection.get(), ignored.data(), ignored.size(), 0);
    if (got == 0 || (got < 0 && !isTemporary(errno)))
        end();
}

} // namespace Kxqtsd
