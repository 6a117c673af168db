#include "support/enginelog.h"

#include "platform/imagelist.h"

#include <QFileInfo>

namespace Korvex {

namespace {

/// The path of this library. Empty when it is a part of the main program, which comes first in the
/// list and has no log of this kind.
QString libraryPath() {
    const void* own = loadedImages().ownHeader();
    bool first = true;
    for (const LoadedImage& image : loadedImages().images()) {
        if (!first && image.header == own)
            return QString::fromLatin1(image.path.data(),
                                       static_cast<qsizetype>(image.path.size()));
        first = false;
    }
    return {};
}

} // namespace

QString engineLogPath() {
    return engineLogPath(QStringLiteral("/System/Installation"));
}

QString engineLogPath(const QString& installationFolder) {
    if (QFileInfo(installationFolder).isDir())
        return installationFolder + QStringLiteral("/KxQts.log");
    const QString path = libraryPath();
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot < 0 ? QString() : path.left(dot) + QStringLiteral(".log");
}

} // namespace Korvex
