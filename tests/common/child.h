#pragma once

#include <gtest/gtest.h>

#include <functional>

namespace KxTest {

/// Runs checks in a child process, which they may leave in whatever state they like.
/// \return A failure when one of them failed or the child did not end properly; what failed is
/// printed by the child.
[[nodiscard]] testing::AssertionResult inChild(const std::function<void()>& checks);

/// The same in a child that has no System V set and no named semaphore around it yet.
[[nodiscard]] testing::AssertionResult inFreshIpcNamespace(const std::function<void()>& checks);

} // namespace KxTest
