// What the root daemon makes of any request. The first byte of the input chooses the exchange. No
// command line is run. KXQTS_ROOT must name a folder for the store.

#include "tools/kxqtsd/commandexchange.h"
#include "tools/kxqtsd/registryexchange.h"
#include "tools/kxqtsd/registrystore.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// A request as a session collects it. \return Whether it is whole.
bool collect(const Kxqtsd::Exchange& exchange, const std::string& bytes, std::string& received) {
    while (const std::optional<std::size_t> size = exchange.sizeOf(received)) {
        require(*size >= received.size());
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
    static Kxqtsd::Loop loop;
    static Kxqtsd::CommandExchange exchange(loop, std::chrono::seconds(1));
    std::string received;
    if (!collect(exchange, bytes, received))
        return;
    const std::optional<std::string> line = Kxqtsd::commandLineIn(received);
    require(!line || (line->size() <= 2046 && line->find('\0') == std::string::npos));
}

void registryRequest(const std::string& bytes) {
    static Kxqtsd::Loop loop;
    static Kxqtsd::Worker worker(loop);
    static Kxqtsd::RegistryExchange exchange(worker);
    std::string received;
    if (!collect(exchange, bytes, received))
        return;
    _D_REG_REQUEST record{};
    std::memcpy(&record, received.data(), sizeof record);
    const std::string response =
        Kxqtsd::answerRegistryRequest(record, received.substr(sizeof record));
    _D_REG_RESPONSE head{};
    require(response.size() >= sizeof head);
    std::memcpy(&head, response.data(), sizeof head);
    require(response.size() == sizeof head + static_cast<std::size_t>(head.payloadLength));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 2 == 0)
        commandRequest(bytes);
    else
        registryRequest(bytes);
    return 0;
}
