#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <optional>

/// What the calls of the disk utility share.
namespace Korvex::DiskUtility {

inline constexpr char program[] = "/usr/sbin/diskutil";

/// Drops the front of a text up to and including the first occurrence of a word.
/// \return What stood in front of the word; nothing when it does not occur.
std::optional<QString> take(QString& text, QLatin1String word);

/// What the utility says of a volume's limits, in bytes; 0 for what it does not tell.
struct Limits {
    unsigned long long currentSize = 0;
    unsigned long long minimumSize = 0;
};

/// Reads the utility's answer to "limits", up to its first zero byte.
Limits limitsIn(const QByteArray& answer);

/// Reads the free space, in bytes, in the utility's answer to "info", up to its first zero byte.
/// \return 0, and a line in the log, where there is none.
unsigned long long freeSpaceIn(const QByteArray& answer);

/// Sets how long the utility is waited for when it is asked for the limits of a volume.
/// \return How long it was before; both in milliseconds.
int setTimeLimit(int milliseconds);

} // namespace Korvex::DiskUtility
