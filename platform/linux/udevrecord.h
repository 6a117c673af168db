#pragma once

#include "platform/disknames.h"

#include <optional>
#include <string>
#include <string_view>

namespace Korvex {

/// What the device manager has written down about a device.
class UdevRecord {
public:
    /// \return Nothing where there is no device manager, or it does not know the device.
    [[nodiscard]] static std::optional<UdevRecord> of(const DiskNode& node);

    explicit UdevRecord(std::string contents) : text(std::move(contents)) {}

    /// A property; empty when there is none. Escapes ("\x20") stand for their characters.
    [[nodiscard]] std::string property(std::string_view name) const;

private:
    std::string text;
};

} // namespace Korvex
