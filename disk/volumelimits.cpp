#include "disk/diskutility.h"
#include "platform/program.h"

#include <KxQts/disk/diskutility.h>
#include <KxQts/support/log.h>

#include <QProcess>

#include <atomic>

using Korvex::DiskUtility::take;

namespace {

std::atomic<int> timeLimit{30000};

struct Answer {
    int exitCode = 0;
    QByteArray text;
};

/// Runs the utility. One that cannot be started has neither an exit code nor an answer.
Answer ask(const QStringList& arguments) {
    if (!Korvex::isRunnable(Korvex::DiskUtility::program))
        return {};
    QProcess process;
    process.start(QLatin1String(Korvex::DiskUtility::program), arguments, QIODevice::ReadWrite);
    process.waitForFinished(timeLimit);
    Answer answer;
    answer.exitCode = process.exitCode();
    answer.text = process.readAllStandardOutput();
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
    }
    return answer;
}

/// Drops the text up to and including the number of bytes in parentheses behind a label, as far as
/// that is there. \return The number; 0 when it is not there, or none.
unsigned long long takeSize(QString& text, QLatin1String label) {
    const qsizetype found = text.indexOf(label);
    const qsizetype parenthesis = found < 0 ? -1 : text.indexOf(QLatin1Char('('), found);
    if (parenthesis < 0)
        return 0;
    text.remove(0, parenthesis + 1);
    auto number = take(text, QLatin1String("bytes"));
    if (!number)
        number = take(text, QLatin1String("Bytes"));
    return number ? static_cast<unsigned long long>(number->simplified().toLongLong()) : 0;
}

} // namespace

std::optional<QString> Korvex::DiskUtility::take(QString& text, QLatin1String word) {
    const qsizetype position = text.indexOf(word);
    if (position < 0)
        return std::nullopt;
    const QString front = text.left(position);
    text.remove(0, position + word.size());
    return front;
}

Korvex::DiskUtility::Limits Korvex::DiskUtility::limitsIn(const QByteArray& answer) {
    QString text = QString::fromLatin1(answer.constData()); // not its size: up to the first NUL
    // In this order: a minimum in front of the current size is not seen.
    Limits limits;
    limits.currentSize = takeSize(text, QLatin1String("Current size:"));
    limits.minimumSize = takeSize(text, QLatin1String("Minimum size:"));
    return limits;
}

int Korvex::DiskUtility::setTimeLimit(int milliseconds) {
    return timeLimit.exchange(milliseconds);
}

int getVolumeFreeSpace(const QString& volume, unsigned long long& currentSize,
                       unsigned long long& minimumSize) {
    currentSize = 0;
    minimumSize = 0;
    const Answer answer = ask({QStringLiteral("resizeVolume"), volume, QStringLiteral("limits")});
    if (answer.exitCode != 0) {
        Korvex::IOLog("getVolumeFreeSpace: start/run diskutil failed; status %d.", answer.exitCode);
        return answer.exitCode;
    }
    const auto limits = Korvex::DiskUtility::limitsIn(answer.text);
    currentSize = limits.currentSize;
    minimumSize = limits.minimumSize;
    return answer.exitCode;
}
