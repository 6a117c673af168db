#include "disk/diskutility.h"

#include <KxQts/disk/diskutility.h>
#include <KxQts/support/log.h>

#include <QFile>

#include <cstdlib>
#include <optional>

using Korvex::IOLog;

namespace {

// The texts of the log are part of the interface, as they are spelled.
constexpr char prefix[] = "getVolumeFreeSpaceFromInfo: ";
constexpr char scratchFile[] = "/Korvex/info";

/// The utility's answer; nothing, and a line in the log, when there is none.
std::optional<QByteArray> readAnswer() {
    QFile file{QLatin1String(scratchFile)};
    if (!file.exists()) {
        IOLog("%sfile not exists.", prefix);
        return std::nullopt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        IOLog("%sfile can^t be openned.", prefix);
        return std::nullopt;
    }
    return file.readAll();
}

/// Takes the text in front of a word, and says so in the log when there is no such word.
std::optional<QString> take(QString& text, const char* word) {
    auto front = Korvex::DiskUtility::take(text, QLatin1String(word));
    if (!front)
        IOLog("%s<%s> can^t be found.", prefix, word);
    return front;
}

} // namespace

/// The number in parentheses behind the first "Space:", whatever stands in front of that.
unsigned long long Korvex::DiskUtility::freeSpaceIn(const QByteArray& answer) {
    QString text = QString::fromLatin1(answer.constData()); // not its size: up to the first NUL
    if (!::take(text, "Space:") || !::take(text, "("))
        return 0;
    const auto number = ::take(text, "Bytes"); // "bytes" is not taken, unlike for the limits
    return number ? static_cast<unsigned long long>(number->trimmed().toLongLong()) : 0;
}

int getVolumeFreeSpaceFromInfo(const QString& volume, unsigned long long& freeSpace) {
    freeSpace = 0;
    const QString command = QLatin1String(Korvex::DiskUtility::program) + QLatin1String(" info ") +
                            volume + QLatin1String(" > ") + QLatin1String(scratchFile);
    const int status =
        std::system(command.toLatin1().constData()); // NOLINT(bugprone-*,cert-env33-c)
    if (status != 0) {
        // The prefix inside the brackets is what readers of the log look for.
        const QString shown = command + QLatin1String(scratchFile);
        IOLog("%ssysmem([%s]) failed; status %d.", shown.toLatin1().constData(), prefix, status);
        return status;
    }
    if (const std::optional<QByteArray> answer = readAnswer())
        freeSpace = Korvex::DiskUtility::freeSpaceIn(*answer);
    return 0;
}
