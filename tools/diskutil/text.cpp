#include "text.h"

#include "failure.h"

#include <QString>
#include <QStringDecoder>

#include <cerrno>
#include <cstring>

namespace DiskUtil {

namespace {

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

} // namespace

std::string printable(const std::string& text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string shown;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (isControl(character))
            (shown += "\\x") += {digits[byte >> 4], digits[byte & 15]};
        else
            shown += character;
    }
    return shown;
}

std::vector<std::string> readingsOf(const std::string& word) {
    std::vector<std::string> readings{word};
    const QByteArray bytes = QByteArray::fromStdString(word);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        readings.push_back(QString::fromLatin1(bytes).toStdString());
    else if (const QByteArray narrow = text.toLatin1(); QString::fromLatin1(narrow) == text)
        readings.push_back(narrow.toStdString());
    return readings;
}

Failure systemFailure(const std::string& what) {
    return Failure(what + ": " + std::strerror(errno)); // NOLINT(concurrency-mt-unsafe)
}

} // namespace DiskUtil
