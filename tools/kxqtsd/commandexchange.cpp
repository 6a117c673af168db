#include "commandexchange.h"

#include "log.h"

#include <cstring>

namespace Kxqtsd {

namespace {

constexpr std::size_t requestSize = 2068;
constexpr std::size_t textOffset = 20;
constexpr unsigned runCommandLine = 6;
constexpr unsigned invalid = 22;
constexpr unsigned cannotStart = 11; // try again: the machine has no process to spare

unsigned codeOf(const std::string& request) {
    unsigned code = 0;
    std::memcpy(&code, request.data(), sizeof code);
    return code;
}

std::string response(unsigned code, unsigned status) {
    const unsigned words[] = {code, status};
    return {reinterpret_cast<const char*>(words), sizeof words};
}

} // namespace

CommandExchange::CommandExchange(Loop& usedLoop, Loop::Clock::duration time)
    : loop(usedLoop), commandTime(time) {}

std::optional<std::size_t> CommandExchange::sizeOf(const std::string&) const {
    return requestSize;
}

std::string CommandExchange::refuse(const std::string& received, unsigned status) const {
    return response(codeOf(received), status);
}

std::optional<std::string> commandLineIn(const std::string& request) {
    const std::size_t end = request.find('\0', textOffset);
    // A text that fills its field was cut somewhere, by the library at the last byte but one: part
    // of a command line is another command line.
    if (codeOf(request) != runCommandLine || end >= requestSize - 1)
        return std::nullopt;
    return request.substr(textOffset, end - textOffset);
}

void CommandExchange::answer(const std::string& request, Respond respond) {
    const unsigned code = codeOf(request);
    if (const std::optional<std::string> line = commandLineIn(request))
        run(*line, respond, code);
    else
        respond(response(code, invalid));
}

void CommandExchange::run(const std::string& line, const Respond& respond, unsigned code) {
    const auto place = commands.emplace(commands.end());
    *place = std::make_unique<Command>(loop, commandTime, [this, place, respond, code](int status) {
        respond(response(code, static_cast<unsigned>(status)));
        remove(place);
    });
    if ((*place)->start(line))
        return;
    Log::error("no process for a command line");
    respond(response(code, cannotStart));
    remove(place);
}

void CommandExchange::remove(Commands::iterator command) {
    commands.erase(command);
    if (commands.empty() && whenIdle)
        whenIdle();
}

void CommandExchange::windUp(std::function<void()> done) {
    whenIdle = std::move(done);
    for (const auto& command : commands)
        command->terminate();
    if (commands.empty())
        whenIdle();
}

} // namespace Kxqtsd
