#pragma once

#include <QLatin1String>
#include <QString>

#include <optional>

/// What the calls of the disk utility share.
namespace Korvex::DiskUtility {

inline constexpr char program[] = "/usr/sbin/diskutil";

/// Drops the front of a text up to and including the first occurrence of a word.
/// \return What stood in front of the word; nothing when it does not occur.
std::optional<QString> take(QString& text, QLatin1String word);

/// Sets how long the utility is waited for when it is asked for the limits of a volume.
/// \return How long it was before; both in milliseconds.
int setTimeLimit(int milliseconds);

} // namespace Korvex::DiskUtility
