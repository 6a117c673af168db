#pragma once

#include <string>

namespace Korvex {

/// Whether every active swap, partition or file, lies on a device that the kernel encrypts. None is
/// active: nothing leaves the memory, so this is true as well.
/// \param root What stands for "/" \param encrypted Left alone on failure.
/// \return 0, or `errno` of the query.
[[nodiscard]] int isSwapEncrypted(const std::string& root, bool& encrypted);

} // namespace Korvex
