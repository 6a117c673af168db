#include <KxQts/support/log.h>

#include "platform/filesharing.h"

#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Korvex {

// Before every other object that may log when it is constructed or destroyed.
constinit WLogFile __kx_glog __attribute__((init_priority(101)));

namespace {

constexpr int closed = -1;
constexpr int standardOutput = 1;
constexpr mode_t everyone = 0666;

constexpr unsigned loggingOff = 0x8000;
constexpr unsigned inTemporaryFolder = 0x4000;
constexpr unsigned newFile = 2;
constexpr unsigned appendToFile = 4;

QString fileName(const QString& path, unsigned flags) {
    QString name = QStringLiteral("logfile.log");
    if ((flags & inTemporaryFolder) == 0)
        return path.isEmpty() ? name : path;
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash >= 0)
        name = path.mid(slash + 1);
    return QStringLiteral("/tmp/") + name;
}

/// Moves a descriptor away from the numbers of the standard ones, which a log file never has.
int aboveStandard(int descriptor) {
    constexpr int first = 2;
    if (descriptor < 0 || descriptor >= first)
        return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, first);
    close(descriptor);
    return moved;
}

/// \return A descriptor above the standard ones; that of standard output when there is none.
int openLogFile(const QString& path, unsigned flags) try {
    const QByteArray name = fileName(path, flags).toLatin1();
    const int how = O_RDWR | O_CREAT | ((flags & newFile) != 0 ? O_TRUNC : O_APPEND);
    const int descriptor = aboveStandard(openShared(name.constData(), how, true));
    if (descriptor < 0)
        return standardOutput;
    // The process's mask has taken rights away.
    (void)fchmod(descriptor, everyone);
    return descriptor;
} catch (const std::bad_alloc&) {
    return standardOutput;
}

} // namespace

int WLogFile::openLog(const QString& path, const QString& newTitle, const QString& module,
                      unsigned int flags) {
    if ((flags & loggingOff) != 0)
        return 1;
    title = newTitle;
    if ((flags & (newFile | appendToFile)) == 0)
        return 1;
    fd = openLogFile(path, flags);
    if (fd <= standardOutput)
        return 1;
    try {
        if (module.isEmpty())
            IOTxt("has been loaded.");
        else
            IOTxt("%s; has been loaded.", module.toLatin1().constData());
    } catch (const std::bad_alloc&) {
        // The line is lost, as any other one would be.
    }
    return 1;
}

int WLogFile::closeLog() {
    if (fd == closed)
        return -1;
    if (fd == 0 || fd == standardOutput)
        return fd - 1;
    IOTxt("has been unloaded.");
    return close(std::exchange(fd, closed));
}

void WLogFile::setTitle(const QString& newTitle, QString* oldTitle) {
    const QString previous = title;
    title = newTitle;
    if (oldTitle)
        *oldTitle = previous;
}

} // namespace Korvex
