#include "files/bundle.h"

#include <QFileInfo>
#include <QStringList>

#include <cerrno>

namespace Korvex {

bool isBundle(const QString& path) {
    static const QStringList suffixes{QStringLiteral("bundle"), QStringLiteral("app"),
                                      QStringLiteral("framework"), QStringLiteral("plugin")};
    if (!suffixes.contains(QFileInfo(path).suffix()))
        return false;
    const int before = errno;
    const bool found = QFileInfo(path + QLatin1String("/Contents/MacOS")).isDir();
    errno = before;
    return found;
}

QString bundleExecutable(const QString& bundle) {
    return bundle + QLatin1String("/Contents/MacOS/") + QFileInfo(bundle).baseName();
}

} // namespace Korvex
