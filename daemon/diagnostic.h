#pragma once

#include <QString>

/// The optional message of a daemon session.
namespace Korvex::Diagnostic {

/// Stores a text where the caller wants one.
void report(QString* message, const QString& text);

/// Ends a session that was answered: a status other than 0 is reported. \return The status.
int concludeWith(unsigned status, QString* message);

} // namespace Korvex::Diagnostic
