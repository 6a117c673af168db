#pragma once

#include <string>

namespace Korvex {

enum class OpticalMedium { None, CD, DVD };

/// What a drive's current profile says is in it; profiles are numbered as drives do.
[[nodiscard]] OpticalMedium opticalMediumOf(unsigned profile);

/// What is in a drive, asked of the drive itself. `None` for what is no optical drive and where the
/// rights to ask are missing.
[[nodiscard]] OpticalMedium opticalMediumIn(const std::string& node);

} // namespace Korvex
