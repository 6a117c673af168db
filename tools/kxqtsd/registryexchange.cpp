#include "registryexchange.h"

#include "registrystore.h"

#include <cstring>

namespace Kxqtsd {

namespace {

_D_REG_REQUEST recordOf(const std::string& request) {
    _D_REG_REQUEST record{};
    std::memcpy(&record, request.data(), std::min(request.size(), sizeof record));
    return record;
}

} // namespace

RegistryExchange::RegistryExchange(Worker& usedWorker) : worker(usedWorker) {}

std::optional<std::size_t> RegistryExchange::sizeOf(const std::string& received) const {
    if (received.size() < sizeof(_D_REG_REQUEST))
        return sizeof(_D_REG_REQUEST);
    const int payload = recordOf(received).payloadLength;
    if (payload < 0 || payload > Korvex::DaemonRegistry::longestPayload)
        return std::nullopt;
    return sizeof(_D_REG_REQUEST) + static_cast<std::size_t>(payload);
}

void RegistryExchange::answer(const std::string& request, Respond respond) {
    worker.post([request, respond = std::move(respond)]() -> std::function<void()> {
        std::string response =
            answerRegistryRequest(recordOf(request), request.substr(sizeof(_D_REG_REQUEST)));
        return [respond, response = std::move(response)] { respond(response); };
    });
}

std::string RegistryExchange::refuse(const std::string& received, unsigned status) const {
    return registryResponse(recordOf(received).command, status);
}

void RegistryExchange::windUp(std::function<void()> done) {
    // What the worker has in hand is one write at most, which its end waits for.
    done();
}

} // namespace Kxqtsd
