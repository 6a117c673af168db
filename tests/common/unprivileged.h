#pragma once

#include <gtest/gtest.h>

#include <sys/types.h>

#include <functional>

namespace KxTest {

/// The user that checks without root's rights run as when the tests run as root: "nobody", whom
/// every system knows. A message bus talks to nobody whom it cannot look up.
inline constexpr uid_t ordinaryUser = 65534;

/// Runs checks in a child process that has given up root's rights for good.
/// \return A failure when one of them failed; its message is printed by the child.
[[nodiscard]] testing::AssertionResult asOrdinaryUser(const std::function<void()>& checks);

/// Makes a file or folder belong to \ref ordinaryUser where the tests run as root, else leaves it
/// to the user they run as.
void giveToOrdinaryUser(const char* path);

} // namespace KxTest
