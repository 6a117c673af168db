#pragma once

#include "command.h"
#include "exchange.h"
#include "loop.h"

#include <list>
#include <memory>
#include <optional>
#include <string>

namespace Kxqtsd {

/// The command line that a whole request asks to run; nothing when it asks for anything else.
std::optional<std::string> commandLineIn(const std::string& request);

/// The command exchange: code 6 runs a command line and answers with what `system` would return.
class CommandExchange : public Exchange {
public:
    CommandExchange(Loop& loop, Loop::Clock::duration commandTime);

    [[nodiscard]] std::optional<std::size_t> sizeOf(const std::string& received) const override;
    void answer(const std::string& request, Respond respond) override;
    [[nodiscard]] std::string refuse(const std::string& received, unsigned status) const override;
    void windUp(std::function<void()> done) override;

private:
    using Commands = std::list<std::unique_ptr<Command>>;

    void run(const std::string& line, const Respond& respond, unsigned code);
    void remove(Commands::iterator command);

    Loop& loop;
    Loop::Clock::duration commandTime;
    Commands commands;
    std::function<void()> whenIdle;
};

} // namespace Kxqtsd
