#pragma once

#include "exchange.h"
#include "loop.h"
#include "platform/descriptor.h"

#include <functional>
#include <memory>
#include <string>

namespace Kxqtsd {

/// One connection: takes a request, has it answered, sends the response and parts.
///
/// No step takes longer than its limit, whatever the peer does.
class Session : public std::enable_shared_from_this<Session> {
public:
    /// \param isServed Whether the peer may ask for anything; else it is told that it may not.
    /// \param ended Called once, when the connection is closed.
    Session(Loop& loop, Exchange& exchange, Korvex::Descriptor connection, bool isServed,
            std::function<void()> ended);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void begin();

    /// Closes the connection now.
    void end();

private:
    void setTimeLimit(Loop::Clock::duration time);
    void readRequest();
    void takeRequest();
    void respond(std::string bytes);
    void writeResponse();
    void part();
    void awaitParting();

    Loop& loop;
    Exchange& exchange;
    Korvex::Descriptor connection;
    bool isServed;
    std::function<void()> onEnd;
    Loop::Alarm timeLimit;
    std::string received;
    std::string toSend;
    std::size_t sent = 0;
};

} // namespace Kxqtsd
