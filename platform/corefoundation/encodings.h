#pragma once

#include <KxQts/corefoundation/string.h>

#include <QByteArray>
#include <QString>

#include <optional>

namespace Korvex::Cf {

/// Text of 8-bit bytes; nothing when they are not valid in the encoding.
[[nodiscard]] std::optional<QString> decode(const QByteArray& bytes, CFStringEncoding encoding);

/// The 8-bit form of text; nothing when the encoding cannot express it.
[[nodiscard]] std::optional<QByteArray> encode(const QString& text, CFStringEncoding encoding);

} // namespace Korvex::Cf
