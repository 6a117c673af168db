#pragma once

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

namespace Kx {

/// A section of an INI file; the one without a name stands before all others.
struct IniSection {
    QString name;
    std::vector<std::pair<QString, QString>> values;
};

/// Reads an INI file as Windows does: lines that begin with a semicolon are comments, blanks around
/// names and values do not count, a pair of quotes around a value is taken off, and the first of
/// equal names in a section counts. \param bytes UTF-16 or UTF-8 if marked so or valid as such,
/// else Latin-1. Throws \ref Failure for a line that is none of that.
[[nodiscard]] std::vector<IniSection> readIni(const QByteArray& bytes);

/// The text of an INI file that reads back as these sections. Throws \ref Failure for names and
/// values that no INI file can hold.
[[nodiscard]] QString iniText(const std::vector<IniSection>& sections);

} // namespace Kx
