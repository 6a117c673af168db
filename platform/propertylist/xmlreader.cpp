#include "platform/propertylist/reader.h"

#include <QByteArray>
#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <QXmlStreamReader>

#include <limits>

namespace Korvex::PropertyList {

namespace {

bool appendXmlInteger(Bytes& to, const QString& text) {
    constexpr int hexadecimal = 16;
    const bool hex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool valid = false;
    const qlonglong value = hex ? text.toLongLong(&valid, hexadecimal) : text.toLongLong(&valid);
    if (valid) {
        appendInteger(to, value);
        return true;
    }
    const qulonglong large = hex ? text.toULongLong(&valid, hexadecimal) : text.toULongLong(&valid);
    if (valid)
        appendWideInteger(to, static_cast<std::int64_t>(large), 0);
    return valid;
}

bool appendXmlReal(Bytes& to, const QString& text) {
    const QString lower = text.toLower();
    const bool negative = lower.startsWith(QLatin1Char('-'));
    const QString digits = negative || lower.startsWith(QLatin1Char('+')) ? lower.mid(1) : lower;
    double value = 0;
    bool valid = true;
    if (digits == QLatin1String("nan"))
        value = std::numeric_limits<double>::quiet_NaN();
    else if (digits == QLatin1String("inf") || digits == QLatin1String("infinity"))
        value = std::numeric_limits<double>::infinity();
    else
        value = digits.toDouble(&valid);
    if (valid)
        appendReal(to, negative ? -value : value, false);
    return valid;
}

bool appendXmlDate(Bytes& to, const QString& text) {
    constexpr double beginning2001 = 978307200;
    constexpr double millisecond = 1000;
    QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!date.isValid())
        return false;
    if (date.timeSpec() == Qt::LocalTime)
        date.setTimeSpec(Qt::UTC);
    appendDate(to, static_cast<double>(date.toMSecsSinceEpoch()) / millisecond - beginning2001);
    return true;
}

bool appendXmlData(Bytes& to, const QString& text) {
    QByteArray stripped = text.toLatin1();
    stripped.replace('\n', "").replace('\r', "").replace('\t', "").replace(' ', "");
    const auto decoded =
        QByteArray::fromBase64Encoding(stripped, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return false;
    const QByteArray& data = *decoded;
    appendData(to, {reinterpret_cast<const std::uint8_t*>(data.constData()),
                    static_cast<std::size_t>(data.size())});
    return true;
}

/// Builds the values as the parser meets them; the containers that are open stand in a list.
class Reading {
public:
    Reading(ByteView file, Objects& toFill)
        : objects(toFill),
          xml(QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()),
                                      static_cast<qsizetype>(file.size()))) {}

    bool run() {
        if (!xml.readNextStartElement() || xml.name() != QLatin1String("plist"))
            return false;
        bool valid = true;
        while (valid && !xml.atEnd())
            valid = take(xml.readNext());
        return valid && !xml.hasError() && open.empty() && objects.root != none &&
               objects.kind(objects.root) == Kind::Dictionary;
    }

private:
    struct Open {
        Node node = none;
        Node key = none; // of a dictionary, once it has been read
    };

    bool take(QXmlStreamReader::TokenType token) {
        switch (token) {
        case QXmlStreamReader::StartElement:
            return begin();
        case QXmlStreamReader::EndElement:
            return end();
        case QXmlStreamReader::Characters:
            return xml.isWhitespace();
        default:
            return token != QXmlStreamReader::Invalid;
        }
    }

    bool begin() {
        const auto name = xml.name();
        if (name == QLatin1String("dict"))
            return openContainer(Kind::Dictionary);
        if (name == QLatin1String("array"))
            return openContainer(Kind::Array);
        return name == QLatin1String("key") ? readKey() : readSingle(name.toString());
    }

    /// The end of a container, or of the whole.
    bool end() {
        if (open.empty())
            return xml.name() == QLatin1String("plist");
        if (open.back().key != none)
            return false;
        open.pop_back();
        return true;
    }

    bool openContainer(Kind kind) {
        const Node node = objects.addContainer(kind, open.size() + 1);
        if (node == none || !put(node))
            return false;
        open.push_back({node, none});
        return true;
    }

    bool readKey() {
        if (open.empty() || open.back().key != none ||
            objects.kind(open.back().node) != Kind::Dictionary)
            return false;
        open.back().key = objects.addText(xml.readElementText());
        return true;
    }

    bool readSingle(const QString& name) {
        const QString text = xml.readElementText();
        bool valid = true;
        const Node node =
            objects.addScalar([&](Bytes& to) { valid = appendSingle(to, name, text); });
        return valid && put(node);
    }

    static bool appendSingle(Bytes& to, const QString& name, const QString& text) {
        if (name == QLatin1String("string")) {
            appendText(to, text);
            return true;
        }
        if (name == QLatin1String("integer"))
            return appendXmlInteger(to, text.trimmed());
        if (name == QLatin1String("real"))
            return appendXmlReal(to, text.trimmed());
        if (name == QLatin1String("date"))
            return appendXmlDate(to, text.trimmed());
        if (name == QLatin1String("data"))
            return appendXmlData(to, text);
        const bool isTrue = name == QLatin1String("true");
        to.push_back(isTrue ? trueByte : falseByte);
        return isTrue || name == QLatin1String("false");
    }

    /// Puts a value where the parser stands.
    bool put(Node node) {
        if (open.empty()) {
            if (objects.root != none)
                return false;
            objects.root = node;
            return true;
        }
        Open& in = open.back();
        const Node key = in.key;
        if ((key == none) == (objects.kind(in.node) == Kind::Dictionary))
            return false;
        in.key = none;
        return objects.append(in.node, key, node);
    }

    Objects& objects;
    QXmlStreamReader xml;
    std::vector<Open> open;
};

} // namespace

bool readXml(ByteView file, Objects& objects) {
    return Reading(file, objects).run();
}

} // namespace Korvex::PropertyList
