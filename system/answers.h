#pragma once

#include <QString>

#include <optional>
#include <string>

namespace Korvex {

/// Hands the system's answer on. \return Whether there is one; \a out is left alone otherwise.
bool handOn(const std::optional<std::string>& answer, QString& out);

/// Whether the machine's preferences say nothing under a domain, so that the system itself is
/// asked. A domain that cannot be read may say something.
[[nodiscard]] bool saysNothing(const QString& domain);

} // namespace Korvex
