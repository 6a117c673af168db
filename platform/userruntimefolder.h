#pragma once

#include <string>

namespace Korvex {

/// The folder for what lives as long as the user's session and is nobody else's business. The
/// system's own for the user where it has one, gone when the session ends; else one below
/// \ref runTimeFolder, which lives as long as the machine runs. Looked up once; it may not exist
/// yet.
const std::string& userRuntimeFolder();

} // namespace Korvex
