#pragma once

namespace Korvex {

/// A number that nobody can foretell, from the system's random device. Never waits but shortly
/// after the system's start.
[[nodiscard]] unsigned randomNumber();

} // namespace Korvex
