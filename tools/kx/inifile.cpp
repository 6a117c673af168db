#include "inifile.h"

#include "arguments.h"
#include "output.h"

#include <QStringConverter>
#include <QStringList>

#include <algorithm>

namespace Kx {

namespace {

QString textOf(const QByteArray& bytes) {
    const auto marked = QStringConverter::encodingForData(bytes);
    QStringDecoder decoder(marked.value_or(QStringConverter::Utf8));
    QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

bool isQuoted(const QString& value) {
    return value.size() >= 2 && value.front() == value.back() &&
           (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\''));
}

QString unquoted(const QString& value) {
    return isQuoted(value) ? value.mid(1, value.size() - 2) : value;
}

IniSection& sectionNamed(std::vector<IniSection>& sections, const QString& name) {
    const auto found =
        std::find_if(sections.begin(), sections.end(),
                     [&](const IniSection& section) { return section.name == name; });
    return found == sections.end() ? sections.emplace_back(IniSection{name, {}}) : *found;
}

void addValue(IniSection& section, const QString& name, const QString& value) {
    const bool known = std::any_of(section.values.begin(), section.values.end(),
                                   [&](const auto& other) { return other.first == name; });
    if (!known)
        section.values.emplace_back(name, value);
}

[[noreturn]] void cannotHold(const QString& name) {
    throw Failure("an INI file cannot hold " + printable(name.toStdString()));
}

/// Whether a text can stand in a line of UTF-8. Stored texts may have half a character.
bool fitsInLine(const QString& text) {
    return !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')) &&
           !text.contains(QChar(0)) && text.isValidUtf16();
}

QString checkedName(const QString& name) {
    if (name.isEmpty() || name != name.trimmed() || !fitsInLine(name) ||
        name.contains(QLatin1Char('=')) || name.startsWith(QLatin1Char(';')) ||
        name.startsWith(QLatin1Char('[')))
        cannotHold(name);
    return name;
}

QString checkedValue(const QString& name, const QString& value) {
    if (!fitsInLine(value))
        cannotHold(name);
    return value != value.trimmed() || isQuoted(value) ? '"' + value + '"' : value;
}

} // namespace

std::vector<IniSection> readIni(const QByteArray& bytes) {
    std::vector<IniSection> sections(1);
    QString section;
    const QStringList lines = textOf(bytes).split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('[')) && line.contains(QLatin1Char(']'))) {
            section = line.mid(1, line.lastIndexOf(QLatin1Char(']')) - 1).trimmed();
            sectionNamed(sections, section);
        } else if (equals > 0) {
            addValue(sectionNamed(sections, section), line.left(equals).trimmed(),
                     unquoted(line.mid(equals + 1).trimmed()));
        } else {
            throw Failure("line " + std::to_string(i + 1) + " is neither a section nor a value");
        }
    }
    return sections;
}

QString iniText(const std::vector<IniSection>& sections) {
    QString text;
    for (const IniSection& section : sections) {
        if (!section.name.isEmpty()) {
            if (section.name != section.name.trimmed() || !fitsInLine(section.name) ||
                section.name.contains(QLatin1Char(']')))
                cannotHold(section.name);
            text += (text.isEmpty() ? "[" : "\n[") + section.name + "]\n";
        }
        for (const auto& [name, value] : section.values)
            text += checkedName(name) + '=' + checkedValue(name, value) + '\n';
    }
    // Whoever reads it drops the first mark of byte order.
    const QChar mark(QChar::ByteOrderMark);
    return text.startsWith(mark) ? mark + text : text;
}

} // namespace Kx
