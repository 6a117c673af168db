// Mounts a volume, shows what sizes it can have, changes its size and takes it off again:
//
//   resizevolume VOLUME [BYTES]
//
// A program in Qt's types that runs as root, so that it needs no daemon for this.

#include <KxQts/KxQts.h>

#include <QTextStream>

namespace {

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

/// A shell reads what the calls with root's rights are given.
QString quoted(QString name) {
    return '\'' + name.replace("'", "'\\''") + '\'';
}

bool showLimits(const QString& volume) {
    unsigned long long current = 0;
    unsigned long long minimum = 0;
    const int result = getVolumeFreeSpace(volume, current, minimum);
    out() << "limits: result " << result << ", now " << current << " bytes, at least " << minimum
          << Qt::endl;
    return result == 0;
}

bool report(const char* what, int result) {
    out() << what << ": result " << result << Qt::endl;
    return result == 0;
}

bool resize(const QString& volume, unsigned long long size) {
    QString message;
    return report("resize", resizeVolume(quoted(volume), size, message)) && showLimits(volume);
}

} // namespace

int main(int argc, char** argv) {
    const QString volume = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (argc < 2 || argc > 3) {
        out() << "usage: resizevolume VOLUME [BYTES]\n";
        return 2;
    }
    setRootModeFor_executeCommandLineTool();
    bool isDone = report("mount", mountUnmountVolume(quoted(volume), true)) && showLimits(volume);
    if (isDone && argc == 3)
        isDone = resize(volume, QByteArray(argv[2]).toULongLong());
    return isDone ? 0 : 1;
}
