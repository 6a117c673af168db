#pragma once

#include <KxQts/daemon/registryprotocol.h>

#include <string>

namespace Kxqtsd {

/// Does what a registry request asks for, on the machine-wide store.
/// \param request A whole record; its texts need not be whole.
/// \return The response: the record and what follows it.
std::string answerRegistryRequest(const _D_REG_REQUEST& request, const std::string& payload);

/// The response without a payload.
std::string registryResponse(unsigned command, unsigned status);

} // namespace Kxqtsd
