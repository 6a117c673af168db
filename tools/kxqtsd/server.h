#pragma once

#include "exchange.h"
#include "loop.h"
#include "platform/descriptor.h"
#include "session.h"

#include <memory>
#include <set>
#include <string>

namespace Kxqtsd {

/// Listens at a port of the loopback address and has a session with everyone who connects.
class Server {
public:
    Server(Loop& loop, Exchange& exchange, std::string name);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// \return Whether the port is the daemon's now; else `errno` says why not.
    [[nodiscard]] bool listen(unsigned short port);

    /// Takes no more connections.
    void close();

private:
    void accept();
    void watchListener();
    void begin(Korvex::Descriptor connection);
    void noteRefusal(const std::string& who);

    Loop& loop;
    Exchange& exchange;
    std::string name;
    Korvex::Descriptor listener;
    std::set<std::shared_ptr<Session>> sessions;
    std::size_t refused = 0;
    Loop::Clock::time_point nextRefusalLine{};
    unsigned unreported = 0;
};

} // namespace Kxqtsd
