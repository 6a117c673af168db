// A library that holds the objects of ours, so that its path is one that a test knows.

#include "support/enginelog.h"

#include <KxQts/export.h>

#include <QByteArray>

KXQTS_C_API const char* engineLogPathOfProbe() {
    static QByteArray path;
    path = Korvex::engineLogPath().toLatin1();
    return path.constData();
}
