#pragma once

namespace Korvex {

/// Whether a handle is one of the predefined keys. `HKEY_USERS` is none of them here.
[[nodiscard]] bool isPredefinedKey(const void* handle);

} // namespace Korvex
