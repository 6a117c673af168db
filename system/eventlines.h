#pragma once

#include <QByteArray>
#include <QString>

namespace Korvex {

/// The label of one line of an event's text. \param section "desc" or "data".
[[nodiscard]] QString eventLabel(unsigned eventId, unsigned short category, const char* section);

/// An event's data in text: two upper-case hexadecimal digits and a blank for a byte, a new line
/// behind every 16 of them and behind the last.
[[nodiscard]] QByteArray eventDataDump(const QByteArray& data);

} // namespace Korvex
