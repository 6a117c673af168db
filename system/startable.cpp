#include "system/startable.h"

#include "platform/program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace Korvex {

namespace {

bool isFolderToStartIn(const QString& path) {
    const QFileInfo folder(path);
    return path.isEmpty() || (folder.isDir() && folder.isExecutable());
}

/// Where the program would be found: in `PATH`, or from the folder that it starts in.
QString pathOf(const QString& program, const QString& workingDirectory) {
    if (!program.contains(QLatin1Char('/')))
        return QStandardPaths::findExecutable(program);
    return workingDirectory.isEmpty() ? program : QDir(workingDirectory).absoluteFilePath(program);
}

} // namespace

bool isStartable(const QString& command, const QString& workingDirectory) {
    const QStringList words = QProcess::splitCommand(command);
    if (words.isEmpty() || words.first().isEmpty() || !isFolderToStartIn(workingDirectory))
        return false;
    const QString path = pathOf(words.first(), workingDirectory);
    return !path.isEmpty() && isRunnable(QFile::encodeName(path).constData());
}

} // namespace Korvex
