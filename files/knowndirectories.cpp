#include <KxQts/files/knowndirectories.h>

#include "files/knowndirectories.h"

bool getSystemDirectory(QString& path) {
    path = QLatin1String(Korvex::systemDirectory);
    return true;
}

bool getWindowsDirectory(QString& path) {
    path = QLatin1String(Korvex::windowsDirectory);
    return true;
}

bool getTempPath(QString& path) {
    path = QLatin1String(Korvex::temporaryDirectory);
    return true;
}
