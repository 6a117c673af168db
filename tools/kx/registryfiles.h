#pragma once

#include "registrykey.h"

#include <string>

namespace Kx {

/// \name A key and a property-list file
/// "-" is standard input or output. They throw \ref Failure.
/// @{
void exportPropertyList(const RegistryKey& key, const std::string& file);
/// Entries of the file replace those of the same names; others stay.
void importPropertyList(const RegistryKey& key, const std::string& file);
/// @}

/// \name A profile and an INI file
/// Profiles are keys of the machine's part. Values of the file replace those of the same names.
/// @{
void exportProfile(const std::optional<std::string>& application, const std::string& profile,
                   const std::string& file);
void importProfile(const std::optional<std::string>& application, const std::string& file,
                   const std::string& profile);
/// @}

} // namespace Kx
