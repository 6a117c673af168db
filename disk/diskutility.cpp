#include "disk/diskutility.h"

#include <KxQts/disk/diskutility.h>
#include <KxQts/support/text.h>
#include <KxQts/system/commandline.h>
#include <KxQts/winapi/helpers.h>

#include <cstdio>

namespace {

int run(const QStringList& arguments, QString& output, unsigned timeLimit) {
    return executeCommandLineTool(QLatin1String(Korvex::DiskUtility::program), arguments, output,
                                  timeLimit);
}

} // namespace

int mountUnmountVolume(const QString& volume, bool mount) {
    QStringList arguments{mount ? QStringLiteral("mount") : QStringLiteral("unmount"), volume};
    return mountUnmountVolumeDisk(arguments);
}

int mountUnmountDisk(const QString& disk, bool mount) {
    QStringList arguments{mount ? QStringLiteral("mountDisk") : QStringLiteral("unmountDisk"),
                          disk};
    return mountUnmountVolumeDisk(arguments);
}

int mountUnmountVolumeDisk(QStringList& args) {
    constexpr int attempts = 8; // a volume may be in use for a moment
    constexpr unsigned pause = 100;
    constexpr unsigned timeLimit = 10;
    QString output;
    int result = 0;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        result = run(args, output, timeLimit);
        if (result == 0)
            return 0;
        kx_sleep(pause);
    }
    std::printf("kxzr:%s %s\n", args.value(0).toLatin1().constData(),
                output.toLatin1().constData());
    return result;
}

int resizeVolume(const QString& volume, unsigned long long newSize, QString& output) {
    constexpr unsigned long long unit = 4096;
    constexpr unsigned timeLimit = 1200; // data is moved
    const unsigned long long rounded = (newSize + (unit - 1)) & ~(unit - 1);
    const QString size = QString::number(rounded) + QLatin1Char('B');
    return run({QStringLiteral("resizeVolume"), volume, size}, output, timeLimit);
}
