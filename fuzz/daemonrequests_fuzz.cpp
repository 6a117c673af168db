// What the root daemon makes of any request, over any store: requests are collected to the byte,
// responses are whole, and what was stored is read. The first byte of the input chooses the
// exchange. No command line is run.

#include "common/input.h"
#include "common/memorypreferences.h"
#include "common/require.h"
#include "tools/kxqtsd/commandexchange.h"
#include "tools/kxqtsd/registryexchange.h"
#include "tools/kxqtsd/registrystore.h"

#include <algorithm>
#include <cstring>

using namespace Korvex::DaemonRegistry;
using KxFuzz::Input;
using KxFuzz::MemoryPreferences;
using KxFuzz::require;

namespace {

/// A request as a session collects it. \return Whether it is whole.
bool collect(const Kxqtsd::Exchange& exchange, const std::string& bytes, std::string& received) {
    while (const std::optional<std::size_t> size = exchange.sizeOf(received)) {
        require(*size >= received.size() &&
                *size <= sizeof(_D_REG_REQUEST) + std::size_t{longestPayload});
        if (received.size() == *size)
            return true;
        const std::size_t more = std::min(*size, bytes.size()) - received.size();
        if (more == 0)
            return false;
        received += bytes.substr(received.size(), more);
    }
    require(!exchange.refuse(received, 22).empty());
    return false;
}

void commandRequest(const std::string& bytes) {
    constexpr std::size_t text = 20;
    static Kxqtsd::Loop loop;
    static Kxqtsd::CommandExchange exchange(loop, std::chrono::seconds(1));
    std::string received;
    if (!collect(exchange, bytes, received))
        return;
    const std::optional<std::string> line = Kxqtsd::commandLineIn(received);
    unsigned code = 0;
    std::memcpy(&code, received.data(), sizeof code);
    // A text that fills its field may have been cut.
    const std::size_t end = std::min(received.find('\0', text), received.size());
    require(line.has_value() == (code == 6 && end - text <= 2046));
    require(!line || *line == received.c_str() + text);
    require(exchange.refuse(received, 22).size() == 8);
}

/// The record of a response and what follows it, whose length the record tells.
struct Answer {
    explicit Answer(const std::string& bytes) {
        require(bytes.size() >= sizeof record);
        std::memcpy(&record, bytes.data(), sizeof record);
        payload = bytes.substr(sizeof record);
        require(record.payloadLength >= 0 && record.payloadLength <= longestPayload &&
                payload.size() == static_cast<std::size_t>(record.payloadLength));
        require(record.status == Done || payload.empty());
        std::memcpy(&body, record.body, sizeof body);
    }
    _D_REG_RESPONSE record{};
    ResponseBody body{};
    std::string payload;
};

Answer ask(unsigned command, const RequestBody& body, const std::string& payload) {
    _D_REG_REQUEST record{};
    record.command = command;
    std::memcpy(record.body, &body, sizeof body);
    record.payloadLength = static_cast<int>(payload.size());
    Answer answer(Kxqtsd::answerRegistryRequest(record, payload));
    require(answer.record.command == command);
    return answer;
}

template <std::size_t size>
void fill(char (&field)[size], const std::string& text) {
    text.copy(field, size);
}

/// A value that was stored is read and listed, until it is deleted.
void checkStoring(const RequestBody& body, const std::string& payload) {
    const Answer stored = ask(SetValue, body, payload);
    if (stored.record.status != Done)
        return require(stored.record.status == NotStored || stored.record.status == BadRequest);
    const Answer read = ask(ReadValue, body, {});
    // A name that leads into the key itself may leave no key behind.
    if (body.name[0] == '\0' || std::strchr(body.name, '/') || std::strchr(body.key, '/'))
        return;
    const std::size_t size = body.valueType == 4   ? 4
                             : body.valueType == 1 ? payload.size() / 2 * 2
                                                   : payload.size();
    require(read.record.status == Done && read.payload == payload.substr(0, size));
    require(read.body.valueType == (body.valueType == 11 ? 3 : body.valueType));
    const Answer listed = ask(EnumerateValues, body, {});
    const std::string name = std::string(body.name) + '\0';
    require(listed.record.status == TooMuchData ||
            (listed.record.status == Done && listed.payload.find(name) != std::string::npos));
    require(listed.body.count == 0 || listed.record.status == TooMuchData ||
            std::count(listed.payload.begin(), listed.payload.end(), '\0') >=
                static_cast<std::ptrdiff_t>(listed.body.count));
    require(ask(DeleteValue, body, {}).record.status == Done);
    require(ask(ReadValue, body, {}).record.status == NoSuchValue);
}

/// A request that makes sense, as far as its texts do.
void registryRequest(Input& input) {
    RequestBody body{};
    const auto command = input.number<std::uint8_t>();
    body.valueType = input.number<std::uint8_t>() % 13;
    fill(body.key, input.text());
    fill(body.name, input.text());
    const std::string payload = input.bytes(input.below(longestPayload));
    MemoryPreferences store(input.rest());
    (void)ask(command, body, payload);
    for (const unsigned known : {ReadValue, EnumerateValues})
        (void)ask(known, body, {});
    checkStoring(body, payload);
}

/// Any bytes, as they come from a connection.
void registryBytes(const std::string& bytes) {
    static Kxqtsd::Loop loop;
    static Kxqtsd::Worker worker(loop);
    static Kxqtsd::RegistryExchange exchange(worker);
    MemoryPreferences store({});
    std::string received;
    if (!collect(exchange, bytes, received))
        return;
    _D_REG_REQUEST record{};
    std::memcpy(&record, received.data(), sizeof record);
    const Answer answer(Kxqtsd::answerRegistryRequest(record, received.substr(sizeof record)));
    require(answer.record.command == record.command);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned exchange = input.number<std::uint8_t>() % 4;
    if (exchange == 0)
        commandRequest(input.rest());
    else if (exchange == 1)
        registryBytes(input.rest());
    else
        registryRequest(input);
    return 0;
}
