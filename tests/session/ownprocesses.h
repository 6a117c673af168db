#pragma once

namespace KxTest {

/// Whether this program sees no process but those that it has started itself, and nobody's system
/// bus. Every test that ends processes or asks a system service asserts it.
[[nodiscard]] bool isOnItsOwn();

} // namespace KxTest
