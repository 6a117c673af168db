#pragma once

#include <string>

namespace Korvex {

/// The folder for what lives as long as the machine runs, "/run/korvex", behind the prefix that
/// `KXQTS_ROOT` sets for processes without special rights. The variable is read at the first call.
const std::string& runTimeFolder();

} // namespace Korvex
