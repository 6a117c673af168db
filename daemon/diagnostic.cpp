#include "daemon/diagnostic.h"

namespace Korvex::Diagnostic {

void report(QString* message, const QString& text) {
    if (message)
        *message = text;
}

int concludeWith(unsigned status, QString* message) {
    if (status != 0)
        report(message, QStringLiteral("(status =%1)").arg(status));
    return static_cast<int>(status);
}

} // namespace Korvex::Diagnostic
