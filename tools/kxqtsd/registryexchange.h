#pragma once

#include "exchange.h"
#include "worker.h"

namespace Kxqtsd {

/// The registry exchange, over the machine-wide store.
class RegistryExchange : public Exchange {
public:
    explicit RegistryExchange(Worker& worker);

    [[nodiscard]] std::optional<std::size_t> sizeOf(const std::string& received) const override;
    void answer(const std::string& request, Respond respond) override;
    [[nodiscard]] std::string refuse(const std::string& received, unsigned status) const override;
    void windUp(std::function<void()> done) override;

private:
    Worker& worker;
};

} // namespace Kxqtsd
