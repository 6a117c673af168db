#include <KxQts/files/knowndirectories.h>

#include "files/knowndirectories.h"
#include "platform/withoutmemory.h"

bool getSystemDirectory(QString& path) {
    return Korvex::keepingErrorNumber(false, [&] {
        path = QLatin1String(Korvex::systemDirectory);
        return true;
    });
}

bool getWindowsDirectory(QString& path) {
    return Korvex::keepingErrorNumber(false, [&] {
        path = QLatin1String(Korvex::windowsDirectory);
        return true;
    });
}

bool getTempPath(QString& path) {
    return Korvex::keepingErrorNumber(false, [&] {
        path = QLatin1String(Korvex::temporaryDirectory);
        return true;
    });
}
