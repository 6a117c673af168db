#pragma once

#include <QString>

#include <cstring>
#include <optional>

namespace Korvex {

/// The name of an application that is looked for; nothing for null and for one of more than 255
/// bytes.
inline std::optional<QString> commandName(const char* name) {
    constexpr std::size_t longest = 255;
    if (!name || std::strlen(name) > longest)
        return std::nullopt;
    return QString::fromLatin1(name);
}

} // namespace Korvex
